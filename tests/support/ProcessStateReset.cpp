#include "support/ProcessStateReset.h"

#include "zentrova/platform/Platform.h"
#include "zentrova/platform/foundation/Log.h"
#include "zentrova/platform/foundation/SystemVersion.h"
#include "zentrova/platform/ui/NSBundle.h"
#include "zentrova/platform/ui/UIScreen.h"
#include "zentrova/reporting/ZVExtensionNetworkManager.h"
#include "zentrova/service/ZVRichNotificationHandler.h"
#include "zentrova/store/ZVExtensionDataManager.h"
#include "zentrova/templates/ZVPushTemplateHandler.h"

namespace zvtest {

ProcessStateReset::~ProcessStateReset() {
  zv::log::setSinkReceiver({});
  zv::log::setSystemReceiver({});
  zv::Platform::shared().reset();
  zv::ZVExtensionDataManager::resetSharedManager();
  zv::ZVExtensionNetworkManager::resetSharedManager();
  zv::ZVRichNotificationHandler::resetSharedHandler();
  zv::ZVPushTemplateHandler::resetSharedInstance();
  zv::NSBundle::mainBundle().setInfoDictionary(zv::Value());
  zv::UIScreen::mainScreen().setBounds(zv::CGRect::make(0, 0, 375, 812));
  zv::setSystemVersion(17.0);
}

}  // namespace zvtest

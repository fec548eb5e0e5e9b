#include "support/ProcessStateReset.h"

#include "platform/foundation/Log.h"
#include "platform/foundation/SystemVersion.h"
#include "platform/ui/NSBundle.h"
#include "platform/ui/UIScreen.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Platform.h"
#include "zentrova/ZVExtensionDataManager.h"
#include "zentrova/ZVPushTemplateHandler.h"

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

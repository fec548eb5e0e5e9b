#include "support/ProcessStateReset.h"

#include "platform/Platform.h"
#include "platform/foundation/Log.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "service/ZVRichNotificationHandler.h"
#include "store/ZVExtensionDataManager.h"

namespace zvtest {

ProcessStateReset::~ProcessStateReset() {
  zv::log::setSinkReceiver({});
  zv::log::setSystemReceiver({});
  zv::Platform::shared().reset();
  zv::ZVExtensionDataManager::resetSharedManager();
  zv::ZVExtensionNetworkManager::resetSharedManager();
  zv::ZVRichNotificationHandler::resetSharedHandler();
}

}  // namespace zvtest

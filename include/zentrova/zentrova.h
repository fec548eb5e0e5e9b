/// @file
/// The whole public API in one include. A host application's two notification extensions need
/// nothing else:
///  - the notification-service extension hands each incoming request to ZVRichNotification and gets
///    the rewritten content back in its content handler;
///  - the notification-content extension hands each notification it shows to
///    ZVPushTemplateHandler, which fills the extension's UIViewController; Renderer draws that
///    view;
///  - the host application configures the store it shares with its extensions (UserDefaults of the
///    app group) and reads what the extensions recorded there (ZVExtensionDataManager);
///  - Platform holds the process-wide settings (folders, platform version, trusted CAs) that a host
///    sets once before first use.
/// Every type lives in namespace zv.
#pragma once

#include "zentrova/Color.h"
#include "zentrova/Error.h"
#include "zentrova/Exception.h"
#include "zentrova/Export.h"
#include "zentrova/Geometry.h"
#include "zentrova/NSExtensionContext.h"
#include "zentrova/Platform.h"
#include "zentrova/Renderer.h"
#include "zentrova/UITraitCollection.h"
#include "zentrova/UIView.h"
#include "zentrova/UIViewController.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotification.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationContent.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/UNNotificationSound.h"
#include "zentrova/Url.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/Value.h"
#include "zentrova/Version.h"
#include "zentrova/ZVExtensionDataManager.h"
#include "zentrova/ZVPushTemplateHandler.h"
#include "zentrova/ZVRichNotification.h"

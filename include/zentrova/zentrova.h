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

/// @mainpage Zentrova rich notifications
///
/// Zentrova turns a push payload into a rich notification: the notification-service side rewrites
/// the content and attaches the downloaded media; the notification-content side builds the
/// expanded view (a media view or an image carousel) into the extension's controller. Include
/// `<zentrova/zentrova.h>`; link `zentrova::service`, `zentrova::content` or both
/// (`find_package(zentrova)`).
///
/// @par The service side (any thread)
/// 1. Once: zv::ZVRichNotification::setAppGroupID() with the app group the extensions share.
/// 2. Per notification: zv::UNNotificationRequest::requestWithRemoteNotification(), then
///    zv::ZVRichNotification::handleRichNotificationRequest(); the content handler receives the
///    content to show, exactly once.
/// 3. When the time is nearly up: zv::ZVRichNotification::serviceExtensionTimeWillExpire().
///
/// @par The content side (main thread)
/// zv::ZVPushTemplateHandler::sharedInstance().addPushTemplateToController() fills a
/// zv::UIViewController's view for a zv::UNNotification; zv::Renderer::writePng() draws it.
///
/// @par The host application
/// Writes its configuration into the app group's zv::UserDefaults and reads the pending
/// notifications, events and card clicks through zv::ZVExtensionDataManager.
///
/// @par Contracts
/// Each class states who owns what, which thread may call, and how it fails. In short: objects
/// are shared with std::shared_ptr and payload values are immutable; the view types are main-thread
/// only; problems with files, attachments and the network come back as zv::Error values, null or
/// false, while a payload of the wrong shape raises zv::Exception, which the service side's entry
/// points catch themselves. zv::Platform holds the process-wide settings, set before first use.

/// @namespace zv
/// Everything Zentrova declares.

#include "platform/ui/UIScreen.h"

namespace zv {

UIScreen& UIScreen::mainScreen() {
  static UIScreen screen;
  return screen;
}

}  // namespace zv

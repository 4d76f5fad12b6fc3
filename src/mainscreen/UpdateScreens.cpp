#include "mainscreen/UpdateScreens.h"

namespace sb::ui {
namespace {
UpdateScreens registered;
}

void SetUpdateScreens(UpdateScreens screens) { registered = std::move(screens); }
const UpdateScreens& CurrentUpdateScreens() { return registered; }

}  // namespace sb::ui

#include "ui/controls/control_classes.h"

#include "ui/control_window.h"
#include "ui/controls/eq_graph.h"
#include "ui/controls/logo_strip.h"
#include "ui/controls/meter_control.h"
#include "ui/controls/slider_control.h"
#include "ui/controls/static_control.h"
#include "ui/controls/tab_strip.h"

namespace tervan::ui {
namespace {

// What follows from a class that is there; null: nothing.
using AfterRegistration = void (*)();

struct Row {
  const ControlClass* control;
  AfterRegistration registered;
};

// In the order of registration and of its undoing.
constexpr Row kClasses[] = {
    {&kFaderClass, nullptr},           {&kTrackbarClass, nullptr}, {&kMeterClass, nullptr},   {&kStaticClass, nullptr},
    {&kLogoClass, ChooseLogoPictures}, {&kTabStripClass, nullptr}, {&kEqGraphClass, nullptr},
};

}  // namespace

void RegisterControls(HINSTANCE module) {
  for (const Row& row : kClasses) {
    if (RegisterControlClass(module, *row.control) && row.registered) row.registered();
  }
}

void UnregisterControls(HINSTANCE module) {
  for (const Row& row : kClasses) UnregisterControlClass(module, *row.control);
}

}  // namespace tervan::ui

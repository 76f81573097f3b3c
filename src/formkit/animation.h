#pragma once

#include <functional>

class QWidget;

namespace tarnel {

/// Calls `calm` if the desktop asks for no animation: at once where the toolkit knows it, a moment later
/// where the desktop has to be asked, and not at all once the widget is gone.
void WhenAnimationIsUnwanted(QWidget& widget, const std::function<void()>& calm);

}  // namespace tarnel

#include "orvanta/foundation/RoutedControl.h"

namespace Orvanta {

RoutedControl* RoutedControl::mgFocusedControl = nullptr;

}  // namespace Orvanta

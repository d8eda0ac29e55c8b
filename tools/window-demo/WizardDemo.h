#pragma once
// The wizard demo: three pages of skinned controls (pictures, bitmap buttons and checkboxes, a
// frame, a scrolling list) in a Wizard shown through the forced-modeless switches and driven by
// posted clicks; each page is written to DIR/wizard-page-N.png.

namespace OrvantaDemo {

// 0 when every page was written.
int runWizardDemo(const char* directory);

}  // namespace OrvantaDemo

#pragma once
// The print preview demo: a window showing the first page of a 4 x 5 contact sheet of the given
// photographs as it will print on Letter paper, drawn by the print job's own code on a worker and
// played back in a PrintPreview; the window is written to OUTPUT.

namespace OrvantaDemo {

// 0 when the picture was written.
int runPrintPreviewDemo(const char* output, int photoCount, char** photos);

}  // namespace OrvantaDemo

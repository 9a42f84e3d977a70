#include "app/refresh_signal.h"
#include "app/screen/screen_program.h"

// The earliest moment: the initializers of the libraries run later.
static void (*const atStart)()
    __attribute__((section(".preinit_array"), used)) = linewatch::app::surviveRefreshSignal;

int main(int argc, char** argv) { return linewatch::app::runOnScreen(argc, argv); }

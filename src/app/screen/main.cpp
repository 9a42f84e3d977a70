#include "app/screen/screen_program.h"

int main(int argc, char** argv) { return linewatch::app::runOnScreen(argc, argv); }

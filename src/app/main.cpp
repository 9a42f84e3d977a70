#include "app/program.h"

int main(int argc, char** argv) { return linewatch::app::run(argc, argv); }

#include "app/modMain.h"

int main(int argc, char** argv) { return RunBrix(argc, argv); }

#include "frontends/cli/command_line.h"

int main(int argc, char** argv) { return norvane::programMain(argc, argv); }

#pragma once

namespace norvane {

/// The program "norvane": reads the arguments of main, does what they ask for, and gives the exit status.
int programMain(int argc, char** argv);

} // namespace norvane

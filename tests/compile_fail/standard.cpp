// Compiled twice: with C++20 it must compile, with C++17 there must be one error.
#include "VelWhiteBoard/VelWhiteBoard.h"

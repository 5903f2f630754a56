/* A program that starts and ends: what a package carries where only its name, its version block and its being
   a program matter. */

#include "start.h"

void Start(void) { ExitProcess(0); }

// The version of this build of the program ("1.0.118": the last number is
// the suite version the data files carry).
#pragma once

const char* QVVersaoPrograma();

#include "df/qvlibex/QVVersao.h"

const char* QVVersaoPrograma() { return ZELKORIN_VERSAO; }

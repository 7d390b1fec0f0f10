// The server side of the transport benchmarks.
#pragma once

// Serves the benchmarks' stand-in class on the socket until SIGTERM.
int QVExecutaServidorBench(const char* socket);

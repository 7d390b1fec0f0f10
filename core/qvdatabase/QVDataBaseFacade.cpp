#include "core/qvdatabase/QVDataBaseFacade.h"

std::mutex& QVMutexConversao() {
  static std::mutex m;
  return m;
}

#include "df/qvlibex/QVCriaObjeto.h"

#include <cstdio>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVStatus.h"
#include "platform/QVClock.h"
#include "platform/QVSystemInfo.h"

namespace {

bool FalhaDefinitiva(HRESULT hr) {
  return hr == REGDB_E_CLASSNOTREG || hr == E_NOINTERFACE || hr == CLASS_E_NOAGGREGATION || hr == E_POINTER;
}

}  // namespace

std::string QVDescricaoFalhaCriacao(HRESULT hr, REFCLSID clsid) {
  char buf[512];
  std::snprintf(buf, sizeof buf, "\nHR: 0x%X (%s)\nCLSID: %s\nPrograma: %s\n", static_cast<unsigned>(hr),
                QVDescricaoHResult(hr).c_str(), QVGuidFormat(clsid).c_str(), QVProcessName().c_str());
  return buf;
}

HRESULT QVCoCreateInstance(REFCLSID clsid, REFIID riid, void** ppv, std::uint32_t flags,
                           std::uint32_t dwClsContext) {
  HRESULT hr = CoCreateInstance(clsid, nullptr, dwClsContext, riid, ppv);
  if (FAILED(hr) && (flags & eQVCCI_RETRY) != 0 && !FalhaDefinitiva(hr)) {
    Sleep(100);
    hr = CoCreateInstance(clsid, nullptr, dwClsContext, riid, ppv);
  }
  if (SUCCEEDED(hr) && ppv != nullptr && *ppv == nullptr) {
    if ((flags & eQVCCI_LOG_FAILURE) != 0) QVLogaFalhaHr(QV_LOCAL, "ER_QVDF_CO_CREATE_INSTANCE_INTERFACE_NULA",
                                                         ER_QVDF_CO_CREATE_INSTANCE_INTERFACE_NULA);
    return ER_QVDF_CO_CREATE_INSTANCE_INTERFACE_NULA;
  }
  if (FAILED(hr) && (flags & eQVCCI_LOG_FAILURE) != 0)
    QVEscreveLinhaErroTexto(QVSinkAtual(), "CQVComPtr::CoCreateInstance", QVNomeFonte(__FILE__), __LINE__,
                            QVFormataFalhaHr("CoCreateInstance()", hr) + QVDescricaoFalhaCriacao(hr, clsid));
  return hr;
}

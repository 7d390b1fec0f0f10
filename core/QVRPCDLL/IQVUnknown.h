// IQVUnknown: the four methods every object of the suite offers after the
// platform's three (slots 3..6). The business interfaces derive from it and
// continue at slot 7. Every method returns a status; records passed "in" are
// passed by value, "out" and "in/out" ones by pointer.
#pragma once

#include <cstdint>

#include "df/qvlibex/QVRegistrosDF.h"
#include "platform/QVCom.h"

inline constexpr IID IID_IQVUnknown = QVGuid("{1756CF8E-B27F-48A2-A362-64C617F9DC50}");

struct IQVUnknown : IUnknown {
  // slot 3
  virtual HRESULT Inicializa_Padrao(_REG_DF_INICIALIZAPS regps) = 0;
  // slot 4: writes 1 through pbOK and answers 0.
  virtual HRESULT KeepAlive(std::int32_t* pbOK) = 0;
  // slot 5
  virtual HRESULT GetUltimoErro(_REG_DF_ERROPS* pregErrops) = 0;
  // slot 6
  virtual HRESULT FuncaoGenerica(std::uint32_t ulFuncao, _REG_DF_FUNCAO_GENERICAPS regInps,
                                 _REG_DF_FUNCAO_GENERICAPS** ppregOutps) = 0;

 protected:
  ~IQVUnknown() = default;
};

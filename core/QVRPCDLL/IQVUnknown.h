// IQVUnknown: the four methods every object of the suite offers after the
// platform's three (slots 3..6). The business interfaces derive from it and
// continue at slot 7. Every method returns a status. The table below is the
// interface (core/QVRPCDLL/QVMetodos.h).
#pragma once

#include <cstdint>

#include "core/QVRPCDLL/QVMetodos.h"
#include "df/qvlibex/QVRegistrosDF.h"
#include "platform/QVCom.h"

inline constexpr IID IID_IQVUnknown = QVGuid("{1756CF8E-B27F-48A2-A362-64C617F9DC50}");

#define QV_METODOS_IQVUNKNOWN(X, ctx) \
  /* checks the client's record and connects the object's session to the company */ \
  X(ctx, 3, Inicializa_Padrao, (Ent, _REG_DF_INICIALIZAPS, regps)) \
  /* writes 1 through pbOK and answers 0 */ \
  X(ctx, 4, KeepAlive, (Sai, std::int32_t, pbOK)) \
  /* the last error of the object's server (all zero when there is none) */ \
  X(ctx, 5, GetUltimoErro, (Sai, _REG_DF_ERROPS, pregErrops)) \
  /* a numbered function; *ppregOutps is allocated by the callee, or left null */ \
  X(ctx, 6, FuncaoGenerica, (Ent, std::uint32_t, ulFuncao), (Ent, _REG_DF_FUNCAO_GENERICAPS, regInps), (Sai, _REG_DF_FUNCAO_GENERICAPS*, ppregOutps))

struct IQVUnknown : IUnknown {
  QV_METODOS_IQVUNKNOWN(QV_DECLARA_METODO, IQVUnknown)

 protected:
  ~IQVUnknown() = default;
};

QV_DESCREVE_INTERFACE(IQVUnknown, void, IID_IQVUnknown, QV_METODOS_IQVUNKNOWN)

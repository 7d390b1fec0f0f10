// The service-call filter as the module's library handles it: the wire
// record itself (same size and layout, so a request's filter is used in
// place) with the questions the search and the reports ask of it.
#pragma once

#include <cstring>
#include <string>

#include "ge/zelkorin/ZelkorinRegistros.h"
#include "platform/QVCodePage.h"
#include "suite/linkedfields/CIEVinculo.h"

class CRegFiltroAtendimento : public _REG_FILTRO_ATENDIMENTO_PS {
 public:
  CRegFiltroAtendimento() : _REG_FILTRO_ATENDIMENTO_PS{} {}
  explicit CRegFiltroAtendimento(const _REG_FILTRO_ATENDIMENTO_PS& reg) : _REG_FILTRO_ATENDIMENTO_PS(reg) {}

  void Limpa() { static_cast<_REG_FILTRO_ATENDIMENTO_PS&>(*this) = _REG_FILTRO_ATENDIMENTO_PS{}; }

  // Whether a criterion applies to the services of a call (when none does,
  // the services are not read).
  bool TemCriterioServico() const {
    return lPonteiroServico != 0 || lPtrProjeto != 0 || lPonteiroExecutor != 0 || bPendente != 0 ||
           bRealizado != 0 || cDescricaoServico[0] != '\0' || iDataSaidaInicial != 0 || iDataSaidaFinal != 0 ||
           bVerificarTituloServico != 0;
  }

  // The linked-information criteria (the non-empty ones of ieInfoPlus), texts
  // in UTF-8.
  CIEVinculo GetVinculos() const {
    CIEVinculo vinculos;
    for (const IE_CAMPO_DATA_PS& campo : ieInfoPlus) {
      QVCampoVinculo c;
      c.id = static_cast<std::int32_t>(campo.id);
      std::memcpy(&c.valor, campo.BinaryData, sizeof(c.valor));
      // Wire texts are in the suite's code page.
      if (campo.pcTexto != nullptr && campo.ulTamanhoTexto > 0)
        c.sTexto = QVAnsiToUtf8(std::string(reinterpret_cast<const char*>(campo.pcTexto),
                                            strnlen(reinterpret_cast<const char*>(campo.pcTexto), campo.ulTamanhoTexto)));
      vinculos.Adiciona(c);
    }
    return vinculos;
  }
};
static_assert(sizeof(CRegFiltroAtendimento) == sizeof(_REG_FILTRO_ATENDIMENTO_PS));

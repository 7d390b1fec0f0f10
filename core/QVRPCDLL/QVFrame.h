// The parts of the call frame that do not depend on its interface and
// server class.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "df/qvlibex/QVException.h"
#include "df/qvlibex/QVRegistrosDF.h"
#include "suite/analytics/QVEstatisticasUso.h"

// FuncaoGenerica number answered by the frame itself: the usage statistics
// of the object and of the server process, as JSON (UTF-8) in the out
// record's bytes, terminating zero included in ulQtdBytes. The input
// record's bytes may narrow them (QVLeFiltroEstatisticas): {"empresa":
// "ACME", "dia": "2026-11-23"}, either member optional; none asks for all.
inline constexpr std::uint32_t QV_FUNCAO_GENERICA_ESTATISTICAS_USO = 9001;
// The answer never exceeds this (terminating zero included), well below
// the transport's default limit of 1 MiB per array: the oldest days are
// left out first, and the answer says how many company-days it left out.
inline constexpr std::size_t kQVMaxBytesEstatisticas = 512 * 1024;

// Splits a method's full name for the statistics: the class is what stands
// before the first ':' (cut at its first '<'), the method what follows the
// "::" (cut at its next ':').
void QVSeparaNomeMetodo(std::string_view nomeCompleto, std::string* pClasse, std::string* pMetodo);

// Hands a JSON text to the client as a task-allocated out record.
[[nodiscard]] HRESULT QVDevolveJson(const std::string& json, _REG_DF_FUNCAO_GENERICAPS** ppregOutps);

// The JSON of the statistics function: what the process is, this object's
// statistics and the process's, each as the filter narrows them, then
// "truncado" (whether anything was left out to keep within
// kQVMaxBytesEstatisticas) and "omitidos" (how many company-days).
std::string QVJsonEstatisticasUso(const QVMapaEstatisticas& objeto, const QVFiltroEstatisticas& filtro = {});
// The whole answer of the statistics function to a request record.
// E_INVALIDARG when the request is not one (nothing handed out).
[[nodiscard]] HRESULT QVRespondeEstatisticasUso(const QVMapaEstatisticas& objeto,
                                                const _REG_DF_FUNCAO_GENERICAPS& pedido,
                                                _REG_DF_FUNCAO_GENERICAPS** ppregOutps);

// Frames alive in this process (client objects not yet released).
int QVObjetosAtivos();
void QVContaObjeto(int delta);

// For the duration of a call: the runtime's invalid-parameter events of this
// thread become a thrown CQVExceptionEx(E_INVALIDARG) naming the method.
class CQVEscopoParametroInvalido {
 public:
  explicit CQVEscopoParametroInvalido(std::string_view nomeMetodo);
  ~CQVEscopoParametroInvalido();
  CQVEscopoParametroInvalido(const CQVEscopoParametroInvalido&) = delete;
  CQVEscopoParametroInvalido& operator=(const CQVEscopoParametroInvalido&) = delete;

 private:
  QVTratadorParametroInvalido m_pTratadorAnterior;
  std::string_view m_sNomeAnterior;
};

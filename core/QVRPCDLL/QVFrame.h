// The parts of the call frame that do not depend on its interface and
// server class.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "df/qvlibex/QVException.h"
#include "df/qvlibex/QVRegistrosDF.h"
#include "suite/analytics/QVEstatisticasUso.h"

// FuncaoGenerica number answered by the frame itself: the usage statistics
// of the object and of the server process, as JSON (UTF-8) in the out
// record's bytes, terminating zero included in ulQtdBytes.
inline constexpr std::uint32_t QV_FUNCAO_GENERICA_ESTATISTICAS_USO = 9001;

// Splits a method's full name for the statistics: the class is what stands
// before the first ':' (cut at its first '<'), the method what follows the
// "::" (cut at its next ':').
void QVSeparaNomeMetodo(std::string_view nomeCompleto, std::string* pClasse, std::string* pMetodo);

// Hands a JSON text to the client as a task-allocated out record.
[[nodiscard]] HRESULT QVDevolveJson(const std::string& json, _REG_DF_FUNCAO_GENERICAPS** ppregOutps);

// The JSON of the statistics function: this object's statistics, the
// process's, and what the process is.
std::string QVJsonEstatisticasUso(const QVMapaEstatisticas& objeto);

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

#include "df/qvlibex/QVProfilerEmpresa.h"

namespace {
thread_local const IQVDF_Profiler* t_sink = nullptr;
}

void CQVProfilerEmpresa::SetIdentidade(std::string empresa, std::uint16_t usuario, std::uint32_t numeroSessao) {
  m_sEmpresa = std::move(empresa);
  m_usUsuario = usuario;
  m_ulNumeroSessao = numeroSessao;
}

void CQVProfilerEmpresa::CopiaIdentidade(const IQVDF_Profiler& origem) {
  SetIdentidade(origem.GetEmpresa(), origem.GetUsuario(), origem.GetNumeroSessao());
}

CQVEscopoLog::CQVEscopoLog(const IQVDF_Profiler* pSink) : m_pAnterior(t_sink) { t_sink = pSink; }

CQVEscopoLog::~CQVEscopoLog() { t_sink = m_pAnterior; }

const IQVDF_Profiler* QVSinkAtual() { return t_sink; }

// The connection identity every object of the system carries (company, user,
// session) and the per-thread log scope through which failures are logged.
//
// The call frame opens a CQVEscopoLog for the duration of each call with the
// identity of the object called; every error line written on that thread in
// the meantime carries that identity. With no scope open, lines are written
// with empty identity columns.
#pragma once

#include <cstdint>
#include <string>

#include "df/qvlibex/QVRegistrosDF.h"

class IQVDF_Profiler {
 public:
  virtual std::string GetEmpresa() const = 0;
  virtual std::uint16_t GetUsuario() const = 0;
  virtual std::uint32_t GetNumeroSessao() const = 0;
  // The client's initialisation record behind this identity, when there is
  // one (application, module, source of the caller for the log columns).
  virtual const _REG_DF_INICIALIZAPS* GetRegistroInicializacao() const { return nullptr; }

 protected:
  ~IQVDF_Profiler() = default;
};

class CQVProfilerEmpresa : public IQVDF_Profiler {
 public:
  CQVProfilerEmpresa() = default;
  CQVProfilerEmpresa(std::string empresa, std::uint16_t usuario, std::uint32_t numeroSessao)
      : m_sEmpresa(std::move(empresa)), m_usUsuario(usuario), m_ulNumeroSessao(numeroSessao) {}
  virtual ~CQVProfilerEmpresa() = default;

  std::string GetEmpresa() const override { return m_sEmpresa; }
  std::uint16_t GetUsuario() const override { return m_usUsuario; }
  std::uint32_t GetNumeroSessao() const override { return m_ulNumeroSessao; }

  void SetIdentidade(std::string empresa, std::uint16_t usuario, std::uint32_t numeroSessao);
  void CopiaIdentidade(const IQVDF_Profiler& origem);

 protected:
  std::string m_sEmpresa;
  std::uint16_t m_usUsuario = 0;
  std::uint32_t m_ulNumeroSessao = 0;
};

// Makes pSink the identity of the error lines of this thread until the scope
// ends; scopes nest.
class CQVEscopoLog {
 public:
  explicit CQVEscopoLog(const IQVDF_Profiler* pSink);
  ~CQVEscopoLog();
  CQVEscopoLog(const CQVEscopoLog&) = delete;
  CQVEscopoLog& operator=(const CQVEscopoLog&) = delete;

 private:
  const IQVDF_Profiler* m_pAnterior;
};

// The identity of the innermost open scope of this thread, or null.
const IQVDF_Profiler* QVSinkAtual();

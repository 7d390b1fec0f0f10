// The technical-service server: one per client object of QVGE_Atendimento.
// It connects the client's session to the company's data and answers the
// business methods of the interface (the frame in CQVGE_Atendimento calls
// the method of the same name). Business methods are virtual so that a
// server can be stood in for in tests of the frame.
#pragma once

#include <cstdint>
#include <string>

#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"

class CGeServidorAtendimento : public CQVBaseParaRotinas {
 public:
  CGeServidorAtendimento() = default;
  ~CGeServidorAtendimento() override;

  std::uint32_t GetModulo() const override { return QV_GE; }
  // The company's data directory for the module (set by OnInicializa).
  const std::string& GetDiretorioDados() const { return m_sDiretorioDados; }

  // The business methods, one per line of the interface's table
  // (ZelkorinInterfaces.h); each answers E_NOTIMPL until it is built.
  QV_METODOS_IQVGE_ATENDIMENTO(QV_DECLARA_METODO_SERVIDOR, CGeServidorAtendimento)

 protected:
  HRESULT OnInicializa() override;

 private:
  std::string m_sDiretorioDados;
};

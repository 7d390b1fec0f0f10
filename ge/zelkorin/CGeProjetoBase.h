// The project server: one per client object of QVGE_Projeto.
#pragma once

#include <cstdint>
#include <string>

#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"

class CGeProjetoBase : public CQVBaseParaRotinas {
 public:
  CGeProjetoBase() = default;
  ~CGeProjetoBase() override;

  std::uint32_t GetModulo() const override { return QV_GE; }
  const std::string& GetDiretorioDados() const { return m_sDiretorioDados; }

  // The business methods, one per line of the interface's table
  // (ZelkorinInterfaces.h).
  QV_METODOS_IQVGE_PROJETO(QV_DECLARA_METODO_SERVIDOR, CGeProjetoBase)

 protected:
  HRESULT OnInicializa() override;

 private:
  std::string m_sDiretorioDados;
};

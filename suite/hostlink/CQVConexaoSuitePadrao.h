// The embedded default's session: the company and user accepted, and the
// two accesses over the suite store.
#pragma once

#include <memory>

#include "suite/hostlink/CQVAcessoGerenciadorSuite.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "suite/masterdata/CQVAcessoEmpresarialSuite.h"

class CQVConexaoSuitePadrao : public IQVConexaoSuite {
 public:
  CQVConexaoSuitePadrao(std::shared_ptr<CQVBancoSuite> pBanco, std::uint32_t lEmpresa, std::uint32_t lUsuario)
      : m_lEmpresa(lEmpresa), m_lUsuario(lUsuario), m_Gerenciador(pBanco, lEmpresa), m_Empresarial(pBanco, lEmpresa) {}
  std::uint32_t GetPonteiroEmpresa() const override { return m_lEmpresa; }
  std::uint32_t GetPonteiroUsuario() const override { return m_lUsuario; }
  IQVAcessoGerenciador* GetAcessoGerenciador() override { return &m_Gerenciador; }
  IQVAcessoEmpresarial* GetAcessoEmpresarial() override { return &m_Empresarial; }

 private:
  std::uint32_t m_lEmpresa;
  std::uint32_t m_lUsuario;
  CQVAcessoGerenciadorSuite m_Gerenciador;
  CQVAcessoEmpresarialSuite m_Empresarial;
};

// The project server: one per client object of QVGE_Projeto.
#pragma once

#include <cstdint>
#include <string>

#include "ge/zelkorin/ZelkorinRegistros.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"

class CGeProjetoBase : public CQVBaseParaRotinas {
 public:
  CGeProjetoBase() = default;
  ~CGeProjetoBase() override;

  std::uint32_t GetModulo() const override { return QV_GE; }
  const std::string& GetDiretorioDados() const { return m_sDiretorioDados; }

  virtual HRESULT BuscaPonteiros(const _REG_FILTRO_PROJETO_PS& RegFiltro, _REG_PTR_PROJETO_PS* pRegPonteiros);
  virtual HRESULT BuscaRegistros(const _REG_PTR_PROJETO_PS& RegPonteiros, _REG_LISTA_PROJETOS_PS* pRegLista);
  virtual HRESULT LeRegistro(std::uint32_t lPtr, _REG_PROJETO_ATENDIMENTO_PS* regps);
  virtual HRESULT Grava(_REG_PROJETO_ATENDIMENTO_PS* regProjeto);

 protected:
  HRESULT OnInicializa() override;

 private:
  std::string m_sDiretorioDados;
};

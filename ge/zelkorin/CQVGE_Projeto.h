// The class QVGE_Projeto: the call frame over IQVGE_Projeto and its server,
// CGeProjetoBase.
#pragma once

#include "core/QVRPCDLL/T_QVUnknown.h"
#include "ge/zelkorin/CGeProjetoBase.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"

class CQVGE_Projeto : public T_QVUnknown<IQVGE_Projeto, CGeProjetoBase> {
 public:
  using Frame = T_QVUnknown<IQVGE_Projeto, CGeProjetoBase>;
  static const Frame::Identidade kIdentidade;

  explicit CQVGE_Projeto(Frame::FabricaServidor fabrica = {});

  HRESULT BuscaPonteiros(_REG_FILTRO_PROJETO_PS RegFiltro, _REG_PTR_PROJETO_PS* pRegPonteiros) override;
  HRESULT BuscaRegistros(_REG_PTR_PROJETO_PS RegPonteiros, _REG_LISTA_PROJETOS_PS* pRegLista) override;
  HRESULT LeRegistro(std::uint32_t lPtr, _REG_PROJETO_ATENDIMENTO_PS* regps) override;
  HRESULT Grava(_REG_PROJETO_ATENDIMENTO_PS* regProjeto) override;
};

#include "ge/zelkorin/CQVGE_Projeto.h"

using S = CGeProjetoBase;

const CQVGE_Projeto::Frame::Identidade CQVGE_Projeto::kIdentidade{
    IID_IQVGE_Projeto, "T_QVUnknown<struct IQVGE_Projeto,class CGeProjetoBase>"};

CQVGE_Projeto::CQVGE_Projeto(Frame::FabricaServidor fabrica) : Frame(kIdentidade, std::move(fabrica)) {}

HRESULT CQVGE_Projeto::BuscaPonteiros(_REG_FILTRO_PROJETO_PS RegFiltro, _REG_PTR_PROJETO_PS* pRegPonteiros) {
  return ChamaNegocio("CQVGE_Projeto::BuscaPonteiros", [&](S& s) { return s.BuscaPonteiros(RegFiltro, pRegPonteiros); });
}

HRESULT CQVGE_Projeto::BuscaRegistros(_REG_PTR_PROJETO_PS RegPonteiros, _REG_LISTA_PROJETOS_PS* pRegLista) {
  return ChamaNegocio("CQVGE_Projeto::BuscaRegistros", [&](S& s) { return s.BuscaRegistros(RegPonteiros, pRegLista); });
}

HRESULT CQVGE_Projeto::LeRegistro(std::uint32_t lPtr, _REG_PROJETO_ATENDIMENTO_PS* regps) {
  return ChamaNegocio("CQVGE_Projeto::LeRegistro", [&](S& s) { return s.LeRegistro(lPtr, regps); });
}

HRESULT CQVGE_Projeto::Grava(_REG_PROJETO_ATENDIMENTO_PS* regProjeto) {
  return ChamaNegocio("CQVGE_Projeto::Grava", [&](S& s) { return s.Grava(regProjeto); });
}

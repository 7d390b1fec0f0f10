#include "suite/hostlink/CQVAcessoSemSessao.h"

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "suite/hostlink/IQVAcessoGerenciador.h"
#include "suite/masterdata/IQVAcessoEmpresarial.h"

namespace {

// Each operation is refused where it was called, under its own name;
// outputs are left as the caller gave them.
#define QV_SEM_SESSAO QV_RETURN(E_QVDF_SEM_SESSAO_SUITE)

class CQVGerenciadorSemSessao final : public IQVAcessoGerenciador {
 public:
  HRESULT LeEventosGoogle(const std::uint32_t*, CQVDadosGE_ListaEventos*) override { QV_SEM_SESSAO; }
  HRESULT GravaEventosGoogle(const CQVDadosGE_ListaEventos*, std::uint32_t*) override { QV_SEM_SESSAO; }
  HRESULT LeAcompanhamentoServico(const REG_QVDMC*, CQVDadosGE_AcompanhamentoServico*, std::uint32_t) override {
    QV_SEM_SESSAO;
  }
  HRESULT GravaAcompanhamentoServico(const CQVDadosGE_AcompanhamentoServico&, REG_QVDMC*, bool) override {
    QV_SEM_SESSAO;
  }
  HRESULT LeRegistroIntegracaoAcompanhamentoATTEC(const REG_QVDMC&,
                                                  CQVDadosGE_DadosIntegracaoAcompanhamentoServico*) override {
    QV_SEM_SESSAO;
  }
  HRESULT InsereAcompanhamentoIntegracaoATTEC(CQVDadosGE_AcompanhamentoServico&, const REG_QVDMC&,
                                              CQVDadosGE_DadosIntegracaoAcompanhamentoServico*) override {
    QV_SEM_SESSAO;
  }
  HRESULT LePropriedadesAcompanhamento(CQVDadosGE_PropriedadesAcompanhamento*) override { QV_SEM_SESSAO; }
  HRESULT LeMestre(CQVDadosGE_Mestre*) override { QV_SEM_SESSAO; }
  HRESULT LeProjeto(std::uint32_t, CQVDadosGE_Projeto*) override { QV_SEM_SESSAO; }
  HRESULT GravaProjeto(CQVDadosGE_Projeto&) override { QV_SEM_SESSAO; }
};

class CQVEmpresarialSemSessao final : public IQVAcessoEmpresarial {
 public:
  HRESULT LeBufferFiliaisAtivas(std::uint32_t, CQVDadosDF_FiliaisAtivas*) override { QV_SEM_SESSAO; }
  HRESULT LeFilial(std::uint32_t, CQVDadosDF_Filial*) override { QV_SEM_SESSAO; }
  HRESULT BuscaPonteirosUsuario(const CQVDadosDF_UsuarioFiltro&, std::vector<std::uint32_t>*) override {
    QV_SEM_SESSAO;
  }
  HRESULT LeUsuario(std::uint32_t, CQVDadosDF_Usuario*) override { QV_SEM_SESSAO; }
  HRESULT LeBufferCFRTLibPla(std::uint32_t, CQVDadosDF_Cliente*) override { QV_SEM_SESSAO; }
  HRESULT LeMunicipio(std::uint32_t, CQVDadosDF_Municipio*) override { QV_SEM_SESSAO; }
  HRESULT LeServico(std::uint32_t, CQVDadosDF_Servico*) override { QV_SEM_SESSAO; }
  HRESULT LeBufferServico(std::uint32_t, CQVDadosDF_Servico*) override { QV_SEM_SESSAO; }
  HRESULT LeBufferServicoEx(std::uint32_t, CQVDadosDF_Servico*) override { QV_SEM_SESSAO; }
  HRESULT ExisteClassificacaoTituloServico(const std::string&, std::uint32_t*, CQVDadosDF_Servico*) override {
    QV_SEM_SESSAO;
  }
  HRESULT LeUnidadeMedida(std::uint32_t, CQVDadosDF_UnidadeMedida*) override { QV_SEM_SESSAO; }
  HRESULT LeContrato(std::uint32_t, CQVDadosDF_Contrato*) override { QV_SEM_SESSAO; }
  HRESULT LeEmpresa(CQVDadosDF_Empresa*) override { QV_SEM_SESSAO; }
  HRESULT LeMensagem(std::uint32_t, std::string*) override { QV_SEM_SESSAO; }
  HRESULT LeVinculos(std::uint16_t, std::uint32_t, CIEVinculo*) override { QV_SEM_SESSAO; }
};

#undef QV_SEM_SESSAO

}  // namespace

// Stateless: one of each, shared by every session base and thread, never
// destroyed (a static's destructor could still be calling them at exit).
IQVAcessoGerenciador* QVAcessoGerenciadorSemSessao() {
  static auto* const p = new CQVGerenciadorSemSessao();
  return p;
}

IQVAcessoEmpresarial* QVAcessoEmpresarialSemSessao() {
  static auto* const p = new CQVEmpresarialSemSessao();
  return p;
}

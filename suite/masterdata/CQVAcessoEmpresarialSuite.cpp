#include "suite/masterdata/CQVAcessoEmpresarialSuite.h"

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVStatus.h"
#include "suite/store/CQVBancoSuite.h"

// Every reader runs its statements per call, under the store's lock, and
// reads the row straight into the caller's object. Per-company tables are
// read by (ponteiro, ponteiro_empresa): another company's row is not found.
// Municipalities, units and users are the suite's, shared; a user is known
// to a company only through usuarios_empresas.

namespace {

constexpr const char* kSqlFilial =
    "SELECT ponteiro, ponteiro_empresa, codigo, nome, cnpj, ponteiro_municipio, ativa FROM filiais "
    "WHERE ponteiro = ?1 AND ponteiro_empresa = ?2";
constexpr const char* kSqlFiliaisAtivas =
    "SELECT f.ponteiro FROM filiais_usuarios fu JOIN filiais f ON f.ponteiro = fu.ponteiro_filial "
    "WHERE fu.ponteiro_usuario = ?1 AND f.ponteiro_empresa = ?2 AND f.ativa = 1 ORDER BY f.ponteiro";
constexpr const char* kSqlUsuario =
    "SELECT u.ponteiro, u.login, u.nome, u.email, u.perfil, u.executor, u.ativo FROM usuarios u "
    "JOIN usuarios_empresas ue ON ue.ponteiro_usuario = u.ponteiro WHERE u.ponteiro = ?1 AND ue.ponteiro_empresa = ?2";
// ?4: the profile asked for, NULL for any.
constexpr const char* kSqlBuscaUsuarios =
    "SELECT u.ponteiro FROM usuarios u JOIN usuarios_empresas ue ON ue.ponteiro_usuario = u.ponteiro "
    "WHERE ue.ponteiro_empresa = ?1 AND (?2 = 0 OR u.executor = 1) AND (?3 = 1 OR u.ativo = 1) "
    "AND (?4 IS NULL OR u.perfil = ?4) ORDER BY u.ponteiro";
constexpr const char* kSqlCliente =
    "SELECT ponteiro, ponteiro_empresa, codigo, nome, nome_fantasia, cnpj_cpf, inscricao_estadual, endereco, bairro, "
    "cep, ponteiro_municipio, telefone, email, ativo FROM clientes WHERE ponteiro = ?1 AND ponteiro_empresa = ?2";
constexpr const char* kSqlMunicipio = "SELECT ponteiro, nome, uf, codigo_ibge FROM municipios WHERE ponteiro = ?1";
#define QV_SQL_SERVICO                                                                                           \
  "SELECT s.ponteiro, s.ponteiro_empresa, s.codigo, s.descricao, s.tipo, s.classificacao, s.ponteiro_unidade, " \
  "u.sigla, u.casas_decimais, s.valor_unitario, s.codigo_tributacao_iss, s.ativo FROM servicos s "            \
  "LEFT JOIN unidades u ON u.ponteiro = s.ponteiro_unidade "
constexpr const char* kSqlServico = QV_SQL_SERVICO "WHERE s.ponteiro = ?1 AND s.ponteiro_empresa = ?2";
// Every prefix of ?2 lies between its first character and itself: the
// range keeps the search on the (company, classification) index. A title
// without a classification groups nothing.
constexpr const char* kSqlTitulo = QV_SQL_SERVICO
    "WHERE s.ponteiro_empresa = ?1 AND s.tipo = 'T' AND s.classificacao <> '' "
    "AND s.classificacao BETWEEN substr(?2, 1, 1) AND ?2 AND substr(?2, 1, length(s.classificacao)) = s.classificacao "
    "ORDER BY length(s.classificacao) DESC, s.ponteiro LIMIT 1";
#undef QV_SQL_SERVICO
constexpr const char* kSqlUnidade = "SELECT ponteiro, sigla, descricao, casas_decimais FROM unidades WHERE ponteiro = ?1";
constexpr const char* kSqlContrato =
    "SELECT ponteiro, ponteiro_empresa, codigo, ponteiro_cliente, data_inicio, data_fim, valor_hora, ativo "
    "FROM contratos WHERE ponteiro = ?1 AND ponteiro_empresa = ?2";
constexpr const char* kSqlEmpresa =
    "SELECT ponteiro, nome, razao_social, nome_fantasia, cnpj, inscricao_estadual, endereco, ponteiro_municipio, "
    "telefone, email, pasta FROM empresas WHERE ponteiro = ?1";
constexpr const char* kSqlVinculos =
    "SELECT campo, valor, texto FROM vinculos WHERE ponteiro_empresa = ?1 AND ma = ?2 AND posicao = ?3 ORDER BY campo";

std::uint32_t Ponteiro(const CQVComandoSuite& cmd, int col) { return static_cast<std::uint32_t>(cmd.Inteiro(col)); }

// The one error line of a record not found, and its status.
HRESULT Inexistente(const QVLocalFonte& local, const char* sTabela, std::uint32_t lPonteiro, std::uint32_t lEmpresa) {
  QVLogaFalhaHr(local, "E_QVDF_REGISTRO_SUITE_INEXISTENTE", E_QVDF_REGISTRO_SUITE_INEXISTENTE,
                {{"tabela", sTabela}, {"lPonteiro", std::to_string(lPonteiro)}, {"m_lEmpresa", std::to_string(lEmpresa)}});
  return E_QVDF_REGISTRO_SUITE_INEXISTENTE;
}

// The row of lPonteiro in *pCmd (the company's own when the statement has
// ?2): S_OK, or S_FALSE when there is none (the reader says which record).
// Call with the store's lock held.
HRESULT LeLinha(CQVBancoSuite& banco, const char* sSql, std::uint32_t lPonteiro, std::uint32_t lEmpresa,
                CQVComandoSuite* pCmd) {
  QV_CHECK(banco.Prepara(sSql, pCmd));
  pCmd->Liga(1, std::int64_t{lPonteiro});
  if (lEmpresa != 0) pCmd->Liga(2, std::int64_t{lEmpresa});
  bool bLinha = false;
  QV_CHECK(pCmd->Passo(&bLinha));
  return bLinha ? S_OK : S_FALSE;
}

// The client emptied without giving up its strings' storage.
void Limpa(CQVDadosDF_Cliente* p) {
  for (std::string* ps : {&p->sCodigo, &p->sNome, &p->sNomeFantasia, &p->sCnpjCpf, &p->sInscricaoEstadual,
                          &p->sEndereco, &p->sBairro, &p->sCep, &p->sTelefone, &p->sEmail})
    ps->clear();
  p->lPonteiro = p->lPonteiroEmpresa = p->lPonteiroMunicipio = 0;
  p->bAtivo = true;
}

void LeServicoDaLinha(const CQVComandoSuite& cmd, CQVDadosDF_Servico* p) {
  p->lPonteiro = Ponteiro(cmd, 0);
  p->lPonteiroEmpresa = Ponteiro(cmd, 1);
  cmd.Texto(2, &p->sCodigo);
  cmd.Texto(3, &p->sDescricao);
  const std::string sTipo = cmd.Texto(4);
  p->cTipo = sTipo.empty() ? kQVServicoNormal : sTipo[0];
  cmd.Texto(5, &p->sClassificacao);
  p->lPonteiroUnidade = Ponteiro(cmd, 6);
  cmd.Texto(7, &p->sUnidade);
  p->iCasasDecimais = cmd.Nulo(8) ? 2 : static_cast<int>(cmd.Inteiro(8));
  p->vValorUnitario = cmd.Inteiro(9);
  cmd.Texto(10, &p->sCodigoTributacaoISS);
  p->bAtivo = cmd.Inteiro(11) != 0;
}

HRESULT LeServicoDe(CQVBancoSuite& banco, std::uint32_t lEmpresa, std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados,
                    const QVLocalFonte& local) {
  if (pDados == nullptr) {
    QVLogaFalhaHr(local, "E_POINTER", E_POINTER);
    return E_POINTER;
  }
  *pDados = {};
  auto trava = banco.Trava();
  CQVComandoSuite cmd;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(banco, kSqlServico, lPonteiro, lEmpresa, &cmd));
  if (hr == S_FALSE) return Inexistente(local, "servicos", lPonteiro, lEmpresa);
  LeServicoDaLinha(cmd, pDados);
  return S_OK;
}

}  // namespace

HRESULT CQVAcessoEmpresarialSuite::LeBufferFiliaisAtivas(std::uint32_t lUsuario, CQVDadosDF_FiliaisAtivas* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  pDados->m_lPonteiros.clear();
  auto trava = m_pBanco->Trava();
  {
    CQVComandoSuite cmd;
    QV_CHECK(m_pBanco->Prepara(kSqlFiliaisAtivas, &cmd));
    cmd.Liga(1, std::int64_t{lUsuario}).Liga(2, std::int64_t{m_lEmpresa});
    for (bool bLinha = true;;) {
      QV_CHECK(cmd.Passo(&bLinha));
      if (!bLinha) break;
      pDados->m_lPonteiros.push_back(Ponteiro(cmd, 0));
    }
  }
  if (!pDados->m_lPonteiros.empty()) return S_OK;
  // None: a user of the company without branches, or no user of it.
  CQVComandoSuite usuario;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlUsuario, lUsuario, m_lEmpresa, &usuario));
  if (hr == S_FALSE) return Inexistente(QV_LOCAL, "usuarios", lUsuario, m_lEmpresa);
  return S_OK;
}

HRESULT CQVAcessoEmpresarialSuite::LeFilial(std::uint32_t lPonteiro, CQVDadosDF_Filial* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = {};
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlFilial, lPonteiro, m_lEmpresa, &cmd));
  if (hr == S_FALSE) return Inexistente(QV_LOCAL, "filiais", lPonteiro, m_lEmpresa);
  pDados->lPonteiro = Ponteiro(cmd, 0);
  pDados->lPonteiroEmpresa = Ponteiro(cmd, 1);
  cmd.Texto(2, &pDados->sCodigo);
  cmd.Texto(3, &pDados->sNome);
  cmd.Texto(4, &pDados->sCnpj);
  pDados->lPonteiroMunicipio = Ponteiro(cmd, 5);
  pDados->bAtiva = cmd.Inteiro(6) != 0;
  return S_OK;
}

HRESULT CQVAcessoEmpresarialSuite::BuscaPonteirosUsuario(const CQVDadosDF_UsuarioFiltro& filtro,
                                                         std::vector<std::uint32_t>* pPonteiros) {
  if (pPonteiros == nullptr) QV_RETURN(E_POINTER);
  pPonteiros->clear();
  auto trava = m_pBanco->Trava();
  std::string sPerfil;
  if (filtro.lPermissoesIguaisA != 0) {
    // The reference user is one of the company's, like the users found.
    CQVComandoSuite usuario;
    HRESULT hr = S_OK;
    QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlUsuario, filtro.lPermissoesIguaisA, m_lEmpresa, &usuario));
    if (hr == S_FALSE) return Inexistente(QV_LOCAL, "usuarios", filtro.lPermissoesIguaisA, m_lEmpresa);
    sPerfil = usuario.Texto(4);
  }
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(kSqlBuscaUsuarios, &cmd));
  cmd.Liga(1, std::int64_t{m_lEmpresa})
      .Liga(2, std::int64_t{filtro.bSomenteExecutores})
      .Liga(3, std::int64_t{filtro.bIncluirInativos});
  if (filtro.lPermissoesIguaisA != 0)
    cmd.Liga(4, sPerfil);
  else
    cmd.LigaNulo(4);
  for (bool bLinha = true;;) {
    QV_CHECK(cmd.Passo(&bLinha));
    if (!bLinha) return S_OK;
    pPonteiros->push_back(Ponteiro(cmd, 0));
  }
}

HRESULT CQVAcessoEmpresarialSuite::LeUsuario(std::uint32_t lPonteiro, CQVDadosDF_Usuario* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = {};
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlUsuario, lPonteiro, m_lEmpresa, &cmd));
  if (hr == S_FALSE) return Inexistente(QV_LOCAL, "usuarios", lPonteiro, m_lEmpresa);
  pDados->lPonteiro = Ponteiro(cmd, 0);
  cmd.Texto(1, &pDados->sLogin);
  cmd.Texto(2, &pDados->sNome);
  cmd.Texto(3, &pDados->sEmail);
  cmd.Texto(4, &pDados->sPerfil);
  pDados->bExecutor = cmd.Inteiro(5) != 0;
  pDados->bAtivo = cmd.Inteiro(6) != 0;
  return S_OK;
}

// Called per record a search looks at: one cached statement, and the
// caller's strings filled in place (no allocation once they have grown).
HRESULT CQVAcessoEmpresarialSuite::LeBufferCFRTLibPla(std::uint32_t lPonteiro, CQVDadosDF_Cliente* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  Limpa(pDados);
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlCliente, lPonteiro, m_lEmpresa, &cmd));
  if (hr == S_FALSE) return Inexistente(QV_LOCAL, "clientes", lPonteiro, m_lEmpresa);
  pDados->lPonteiro = Ponteiro(cmd, 0);
  pDados->lPonteiroEmpresa = Ponteiro(cmd, 1);
  cmd.Texto(2, &pDados->sCodigo);
  cmd.Texto(3, &pDados->sNome);
  cmd.Texto(4, &pDados->sNomeFantasia);
  cmd.Texto(5, &pDados->sCnpjCpf);
  cmd.Texto(6, &pDados->sInscricaoEstadual);
  cmd.Texto(7, &pDados->sEndereco);
  cmd.Texto(8, &pDados->sBairro);
  cmd.Texto(9, &pDados->sCep);
  pDados->lPonteiroMunicipio = Ponteiro(cmd, 10);
  cmd.Texto(11, &pDados->sTelefone);
  cmd.Texto(12, &pDados->sEmail);
  pDados->bAtivo = cmd.Inteiro(13) != 0;
  return S_OK;
}

HRESULT CQVAcessoEmpresarialSuite::LeMunicipio(std::uint32_t lPonteiro, CQVDadosDF_Municipio* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = {};
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlMunicipio, lPonteiro, 0, &cmd));
  if (hr == S_FALSE) return Inexistente(QV_LOCAL, "municipios", lPonteiro, m_lEmpresa);
  pDados->lPonteiro = Ponteiro(cmd, 0);
  cmd.Texto(1, &pDados->sNome);
  cmd.Texto(2, &pDados->sUF);
  cmd.Texto(3, &pDados->sCodigoIBGE);
  return S_OK;
}

// The suite's three entries to one reader; the line of a record not found
// names the entry called.
HRESULT CQVAcessoEmpresarialSuite::LeServico(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) {
  return LeServicoDe(*m_pBanco, m_lEmpresa, lPonteiro, pDados, QV_LOCAL);
}

HRESULT CQVAcessoEmpresarialSuite::LeBufferServico(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) {
  return LeServicoDe(*m_pBanco, m_lEmpresa, lPonteiro, pDados, QV_LOCAL);
}

HRESULT CQVAcessoEmpresarialSuite::LeBufferServicoEx(std::uint32_t lPonteiro, CQVDadosDF_Servico* pDados) {
  return LeServicoDe(*m_pBanco, m_lEmpresa, lPonteiro, pDados, QV_LOCAL);
}

HRESULT CQVAcessoEmpresarialSuite::ExisteClassificacaoTituloServico(const std::string& sClassificacao,
                                                                     std::uint32_t* plPonteiroClasse,
                                                                     CQVDadosDF_Servico* pDados) {
  if (plPonteiroClasse == nullptr || pDados == nullptr) QV_RETURN(E_POINTER);
  *plPonteiroClasse = 0;
  *pDados = {};
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(kSqlTitulo, &cmd));
  bool bLinha = false;
  QV_CHECK(cmd.Liga(1, std::int64_t{m_lEmpresa}).Liga(2, sClassificacao).Passo(&bLinha));
  if (!bLinha) return S_FALSE;
  LeServicoDaLinha(cmd, pDados);
  *plPonteiroClasse = pDados->lPonteiro;
  return S_OK;
}

HRESULT CQVAcessoEmpresarialSuite::LeUnidadeMedida(std::uint32_t lPonteiro, CQVDadosDF_UnidadeMedida* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = {};
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlUnidade, lPonteiro, 0, &cmd));
  if (hr == S_FALSE) return Inexistente(QV_LOCAL, "unidades", lPonteiro, m_lEmpresa);
  pDados->lPonteiro = Ponteiro(cmd, 0);
  cmd.Texto(1, &pDados->sSigla);
  cmd.Texto(2, &pDados->sDescricao);
  pDados->iCasasDecimais = static_cast<int>(cmd.Inteiro(3));
  return S_OK;
}

HRESULT CQVAcessoEmpresarialSuite::LeContrato(std::uint32_t lPonteiro, CQVDadosDF_Contrato* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = {};
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlContrato, lPonteiro, m_lEmpresa, &cmd));
  if (hr == S_FALSE) return Inexistente(QV_LOCAL, "contratos", lPonteiro, m_lEmpresa);
  pDados->lPonteiro = Ponteiro(cmd, 0);
  pDados->lPonteiroEmpresa = Ponteiro(cmd, 1);
  cmd.Texto(2, &pDados->sCodigo);
  pDados->lPonteiroCliente = Ponteiro(cmd, 3);
  pDados->iDataInicio = Ponteiro(cmd, 4);
  pDados->iDataFim = Ponteiro(cmd, 5);
  pDados->vValorHora = cmd.Inteiro(6);
  pDados->bAtivo = cmd.Inteiro(7) != 0;
  return S_OK;
}

HRESULT CQVAcessoEmpresarialSuite::LeEmpresa(CQVDadosDF_Empresa* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = {};
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, LeLinha(*m_pBanco, kSqlEmpresa, m_lEmpresa, 0, &cmd));
  if (hr == S_FALSE) return Inexistente(QV_LOCAL, "empresas", m_lEmpresa, m_lEmpresa);
  pDados->lPonteiro = Ponteiro(cmd, 0);
  cmd.Texto(1, &pDados->sNome);
  cmd.Texto(2, &pDados->sRazaoSocial);
  cmd.Texto(3, &pDados->sNomeFantasia);
  cmd.Texto(4, &pDados->sCnpj);
  cmd.Texto(5, &pDados->sInscricaoEstadual);
  cmd.Texto(6, &pDados->sEndereco);
  pDados->lPonteiroMunicipio = Ponteiro(cmd, 7);
  cmd.Texto(8, &pDados->sTelefone);
  cmd.Texto(9, &pDados->sEmail);
  cmd.Texto(10, &pDados->sPasta);
  return S_OK;
}

HRESULT CQVAcessoEmpresarialSuite::LeMensagem(std::uint32_t lNumero, std::string* psTexto) {
  if (psTexto == nullptr) QV_RETURN(E_POINTER);
  psTexto->clear();
  // A message number is the code part of a status: 16 bits.
  const QVCodigoSistema* pCodigo = lNumero <= 0xFFFFu ? QVProcuraCodigoSistema(QVHrDeMensagem(lNumero)) : nullptr;
  if (pCodigo == nullptr) return Inexistente(QV_LOCAL, "mensagens", lNumero, m_lEmpresa);
  *psTexto = pCodigo->mensagem;
  return S_OK;
}

HRESULT CQVAcessoEmpresarialSuite::LeVinculos(std::uint16_t iMA, std::uint32_t lPosicao, CIEVinculo* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  pDados->m_campos.clear();
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(kSqlVinculos, &cmd));
  cmd.Liga(1, std::int64_t{m_lEmpresa}).Liga(2, std::int64_t{iMA}).Liga(3, std::int64_t{lPosicao});
  for (bool bLinha = true;;) {
    QV_CHECK(cmd.Passo(&bLinha));
    if (!bLinha) break;
    QVCampoVinculo campo;
    // Ids are the suite's 32-bit values, kept whether stored signed or not.
    campo.id = static_cast<std::int32_t>(static_cast<std::uint32_t>(cmd.Inteiro(0)));
    campo.valor = cmd.Inteiro(1);
    cmd.Texto(2, &campo.sTexto);
    pDados->m_campos.push_back(std::move(campo));
  }
  return pDados->m_campos.empty() ? S_FALSE : S_OK;
}

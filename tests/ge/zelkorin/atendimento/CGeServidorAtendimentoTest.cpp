// The service-call server over its database: a generated call goes in and
// comes back field for field, calls are numbered uniquely over all months,
// the layouts' version gates the opening, one company is one database, and
// bad input changes nothing on disk.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/ZelkorinArquivos.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "platform/QVBstr.h"
#include "platform/QVCodePage.h"
#include "suite/store/CQVBancoSuite.h"
#include "tests/support/QVProcessoFilho.h"
#include "tests/support/QVTesteArquivos.h"
#include "tests/support/QVTesteRegistros.h"

namespace {

const std::uint16_t kMarco2024 = QVMesAno(2024, 3);
const std::uint16_t kAbril2024 = QVMesAno(2024, 4);

class Atendimento : public ::testing::Test {
 protected:
  // Each case judges the error lines it caused, not those of earlier cases.
  void SetUp() override { QVTesteLimpaLog(); }
};

// A server object of a company, initialised as the frame would.
struct Servidor {
  CGeServidorAtendimento s;
  HRESULT hr;
  explicit Servidor(const std::string& empresa) : hr(s.Inicializa(QVTesteInicializaPS(empresa))) {}
  CGeServidorAtendimentoDatabase* db() { return s.GetDataBase(); }
};

// Every file of a folder, by name.
std::map<std::string, std::string> Arquivos(const std::string& dir) {
  std::map<std::string, std::string> m;
  for (const auto& e : std::filesystem::directory_iterator(dir)) m[e.path().filename()] = QVTesteLeArquivo(e.path());
  return m;
}

// ---- a client's call from a sample record --------------------------------------
//
// The sample has every byte and every list filled; a client's record has
// its reserved fields zero, its booleans 0 or 1 and its key a text.

template <class T>
void Zera(T& campo) {
  std::memset(static_cast<void*>(&campo), 0, sizeof campo);
}
void ZeraBstr(BSTR& bs) {
  SysFreeString(bs);
  bs = nullptr;
}
std::int32_t Bool(std::int32_t b) { return b & 1; }

void LimpaRetencoes(_REG_RETENCOES_PS& r) {
  Zera(r.iFiller), Zera(r.cFiller), Zera(r.pFiller);
  for (std::uint32_t i = 0; i < r.iQtdDeducaoBCINSS; ++i) {
    r.pRegDeducoesBCINSS[i].cDescricao[255] = 0;
    Zera(r.pRegDeducoesBCINSS[i].cFiller);
  }
}
void LimpaEFD(tagREG_EFD_REINF_ITENS_NFPS& e) { Zera(e.vFiler), Zera(e.cFiller); }
void LimpaClassificacoes(_REG_CLASSIFICACAO_GE_PS* p, std::uint32_t n) {
  for (std::uint32_t i = 0; i < n; ++i) Zera(p[i].cFiller), Zera(p[i].pFiller);
}

_REG_ATENDIMENTO_PS Chamado(std::uint32_t semente) {
  auto a = Amostra<_REG_ATENDIMENTO_PS>(semente);
  a.lNumeroAtendimento = 1000 + semente;
  // A text of 8 characters (no zero among them: the text would end there),
  // then zeros.
  for (int i = 0; i < 8; ++i)
    if (a.cChave[i] == 0) a.cChave[i] = 'k';
  std::memset(a.cChave + 8, 0, sizeof a.cChave - 8);
  Zera(a.szFiller), Zera(a.iFiller), Zera(a.bFiller), Zera(a.lFiller), Zera(a.iFillerDma), ZeraBstr(a.bsFiller);
  Zera(a.UltAlteracaoAtTec.iFiller);
  for (std::int32_t* b : {&a.bCancelado, &a.bFaturado, &a.bReembolsado, &a.bWeb, &a.bEhAtendExcedente,
                          &a.bListarDescricaoServEmail, &a.bListarComentarioNaAgenda})
    *b = Bool(*b);
  Zera(a.regListaEventosGoogle.lFiller), Zera(a.regListaEventosGoogle.pFiller);
  for (std::uint32_t i = 0; i < a.regListaEventosGoogle.lQuantidadeEventos; ++i) {
    _REG_GE_EVENTO_GOOGLEPS& e = a.regListaEventosGoogle.pListaEventos[i];
    Zera(e.cFiller), Zera(e.rIDEvento.cFiller), Zera(e.rIDEvento.pFiller), Zera(e.rIDAgenda.cFiller),
        Zera(e.rIDAgenda.pFiller);
  }
  Zera(a.regListaPonteirosIntegACM.cFiller), Zera(a.regListaPonteirosIntegACM.pFiller);
  LimpaRetencoes(a.regRetencoesSomarItensNF);
  LimpaEFD(a.regEFDREINFPsSomarItensNF);
  for (std::uint32_t i = 0; i < a.iQuantidadeServicoAtend; ++i) {
    _REG_SERVICO_ATENDIMENTO_PS& s = a.pServicos[i];
    Zera(s.cFiller), Zera(s.lFiller), ZeraBstr(s.bsFiller);
    s.bCobrar = Bool(s.bCobrar), s.bServicoExcedente = Bool(s.bServicoExcedente);
    s.cIntegrarAcompServ = 0, s.lIdentificadorServicoAcompanhamento = 0;  // no follow-up of the suite
    LimpaRetencoes(s.regRetencoes);
    LimpaEFD(s.regEFD_REINF);
    LimpaClassificacoes(s.pClassificacoes, s.iQuantidadeClassificacao);
    for (std::uint32_t j = 0; j < s.iQuantidadeSessao; ++j) Zera(s.pSessoes[j].iFiller);
  }
  for (std::uint32_t i = 0; i < a.iQuantidadeDespesa; ++i) {
    _REG_DESPESA_ATENDIMENTO_PS& d = a.pDespesas[i];
    Zera(d.iFiller), Zera(d.bFiller), Zera(d.lFiller), Zera(d.vFiller), Zera(d.szFiller), Zera(d.pFiller);
    d.bCobrar = Bool(d.bCobrar), d.bFaturar = Bool(d.bFaturar), d.bDemonstrativo = Bool(d.bDemonstrativo);
    LimpaClassificacoes(d.pClassificacoes, d.iQuantidadeClassificacao);
  }
  LimpaClassificacoes(a.pClassificacoes, a.lQuantidadeClassificacao);
  return a;
}

// The positions the server gives (of records, lists and texts, and the
// keys of services and expenses built from them), copied from what was
// read into what was sent: everything else must be equal.
template <class T, class C>
void CopiaDe(const T& lido, T& esperado, C T::*campo) {
  std::memcpy(&(esperado.*campo), &(lido.*campo), sizeof(C));
}
void CopiaPosicoes(const _REG_RETENCOES_PS& l, _REG_RETENCOES_PS& e) { e.lPtrDeducaoBCINSS = l.lPtrDeducaoBCINSS; }
void CopiaPosicoes(const tagREG_EFD_REINF_ITENS_NFPS& l, tagREG_EFD_REINF_ITENS_NFPS& e) {
  e.lPonteiroProcessoRetAjuiz = l.lPonteiroProcessoRetAjuiz, e.lPonteiroProcessoRetAdic = l.lPonteiroProcessoRetAdic;
}
void CopiaPosicoes(const _REG_CLASSIFICACAO_GE_PS* l, _REG_CLASSIFICACAO_GE_PS* e, std::uint32_t n) {
  for (std::uint32_t i = 0; i < n; ++i) e[i].lPonteiroGerencial = l[i].lPonteiroGerencial;
}
void CopiaPosicoes(const _REG_ATENDIMENTO_PS& l, _REG_ATENDIMENTO_PS& e) {
  using A = _REG_ATENDIMENTO_PS;
  for (auto campo : {&A::lPonteiro, &A::lPonteiroComentario, &A::lPonteiroServicoAtend, &A::lPonteiroDespesa,
                     &A::lPonteiroComentarioAgendamento, &A::lPonteiroDescricaoSomarItensNF,
                     &A::lPonteiroRetencoesSomarItensNF, &A::lPonteiroPISCOFINSSomarItensNF,
                     &A::lPonteiroEFD_REINFSomarItensNF, &A::lPtrRepresentante, &A::lPonteiroClassificacao,
                     &A::lPonteiroEventoAgenda, &A::lPonteiroListaPosIntegracoesACM})
    CopiaDe(l, e, campo);
  CopiaPosicoes(l.regRetencoesSomarItensNF, e.regRetencoesSomarItensNF);
  CopiaPosicoes(l.regEFDREINFPsSomarItensNF, e.regEFDREINFPsSomarItensNF);
  CopiaPosicoes(l.pClassificacoes, e.pClassificacoes, std::min(l.lQuantidadeClassificacao, e.lQuantidadeClassificacao));
  for (std::uint32_t i = 0; i < std::min(l.regListaEventosGoogle.lQuantidadeEventos,
                                         e.regListaEventosGoogle.lQuantidadeEventos); ++i) {
    e.regListaEventosGoogle.pListaEventos[i].lPonteiroTextoIDAgenda = l.regListaEventosGoogle.pListaEventos[i].lPonteiroTextoIDAgenda;
    e.regListaEventosGoogle.pListaEventos[i].lPonteiroTextoIDEvento = l.regListaEventosGoogle.pListaEventos[i].lPonteiroTextoIDEvento;
  }
  using S = _REG_SERVICO_ATENDIMENTO_PS;
  for (std::uint32_t i = 0; i < std::min(l.iQuantidadeServicoAtend, e.iQuantidadeServicoAtend); ++i) {
    for (auto campo : {&S::lPonteiroComentario, &S::lPonteiroResultado, &S::lPonteiroSessao,
                       &S::lPonteiroClassificacao, &S::lPonteiroDescricao, &S::lPonteiroRetencoes,
                       &S::lPonteiroEFD_REINF})
      CopiaDe(l.pServicos[i], e.pServicos[i], campo);
    CopiaDe(l.pServicos[i], e.pServicos[i], &S::cChave);
    CopiaPosicoes(l.pServicos[i].regRetencoes, e.pServicos[i].regRetencoes);
    CopiaPosicoes(l.pServicos[i].regEFD_REINF, e.pServicos[i].regEFD_REINF);
    CopiaPosicoes(l.pServicos[i].pClassificacoes, e.pServicos[i].pClassificacoes,
                  std::min(l.pServicos[i].iQuantidadeClassificacao, e.pServicos[i].iQuantidadeClassificacao));
  }
  using D = _REG_DESPESA_ATENDIMENTO_PS;
  for (std::uint32_t i = 0; i < std::min(l.iQuantidadeDespesa, e.iQuantidadeDespesa); ++i) {
    for (auto campo : {&D::lPonteiroComentario, &D::lPonteiroClassificacao, &D::lPonteiroDescricao,
                       &D::lPonteiroPisCofins})
      CopiaDe(l.pDespesas[i], e.pDespesas[i], campo);
    CopiaDe(l.pDespesas[i], e.pDespesas[i], &D::cChave);
    CopiaPosicoes(l.pDespesas[i].pClassificacoes, e.pDespesas[i].pClassificacoes,
                  std::min(l.pDespesas[i].iQuantidadeClassificacao, e.pDespesas[i].iQuantidadeClassificacao));
  }
}

// Where two records first differ ("" when equal), for the failure message:
// the fixed bytes outside pointers, then what each owns.
void MarcaPonteiros(const QVDescritorRegistro& d, std::size_t base, std::vector<bool>& mascara) {
  for (const QVCampoPonteiro& c : d.campos) {
    if (c.tipo == EQVCampoPonteiro::Aninhado)
      MarcaPonteiros(*c.elemento, base + c.offset, mascara);
    else
      for (std::size_t i = 0; i < sizeof(void*); ++i) mascara[base + c.offset + i] = true;
  }
}
std::string Diferenca(const QVDescritorRegistro& d, const unsigned char* a, const unsigned char* b,
                      const std::string& nome) {
  std::vector<bool> mascara(d.tamanho, false);
  MarcaPonteiros(d, 0, mascara);
  for (std::size_t i = 0; i < d.tamanho; ++i)
    if (!mascara[i] && a[i] != b[i]) return nome + "+" + std::to_string(i);
  for (const QVCampoPonteiro& c : d.campos) {
    const std::string sCampo = nome + "." + c.nome;
    if (c.tipo == EQVCampoPonteiro::Aninhado) {
      if (auto s = Diferenca(*c.elemento, a + c.offset, b + c.offset, sCampo); !s.empty()) return s;
      continue;
    }
    unsigned char *pa, *pb;
    std::memcpy(&pa, a + c.offset, sizeof pa);
    std::memcpy(&pb, b + c.offset, sizeof pb);
    if (c.tipo == EQVCampoPonteiro::Bstr) {
      if (QVBstrToUtf8(reinterpret_cast<BSTR>(pa)) != QVBstrToUtf8(reinterpret_cast<BSTR>(pb))) return sCampo;
      continue;
    }
    const std::uint32_t n = QVLeContagem(c, a);
    if ((n != 0) && (pa == nullptr || pb == nullptr)) return sCampo + " (nulo)";
    for (std::uint32_t i = 0; i < n; ++i) {
      const std::size_t tam = c.tipo == EQVCampoPonteiro::Array ? c.tamElemento : c.elemento->tamanho;
      const std::string sItem = sCampo + "[" + std::to_string(i) + "]";
      if (c.tipo == EQVCampoPonteiro::Array && std::memcmp(pa + i * tam, pb + i * tam, tam) != 0) return sItem;
      if (c.tipo == EQVCampoPonteiro::Registros)
        if (auto s = Diferenca(*c.elemento, pa + i * tam, pb + i * tam, sItem); !s.empty()) return s;
    }
  }
  return {};
}

// The call at (iMA, lPosicao) equals what was sent but for the server's
// positions.
void ConfereLido(Servidor& srv, std::uint16_t iMA, std::uint32_t lPosicao, const _REG_ATENDIMENTO_PS& enviado) {
  CQVRegistroPs<_REG_ATENDIMENTO_PS> lido, esperado;
  ASSERT_EQ(srv.s.LeAtendimento(iMA, lPosicao, &lido.reg), S_OK);
  ASSERT_EQ(QVCopia(enviado, &esperado.reg), S_OK);
  CopiaPosicoes(lido.reg, esperado.reg);
  EXPECT_EQ(lido.reg.lPonteiro, lPosicao);
  const std::string sDif = Diferenca(QVDescritor<_REG_ATENDIMENTO_PS>(), reinterpret_cast<unsigned char*>(&esperado.reg),
                                     reinterpret_cast<unsigned char*>(&lido.reg), "atendimento");
  EXPECT_TRUE(QVIguais(esperado.reg, lido.reg)) << sDif;
  EXPECT_EQ(sDif, "");
}

}  // namespace

// Calls made from samples (every field, every list, one to three elements,
// two levels deep) are saved, rewritten over another one's place with
// lists that grow and shrink, and read back equal; the other calls stay.
TEST_F(Atendimento, ChamadoGeradoVoltaCampoACampo) {
  Servidor srv("IDA E VOLTA");
  ASSERT_EQ(srv.hr, S_OK);
  struct Passo {
    std::uint32_t semente;
    std::uint16_t iMA;
    int iSobre;  // -1: a new call; else the call of that step is rewritten
  };
  const Passo passos[] = {{1, kMarco2024, -1}, {2, kMarco2024, -1}, {3, kMarco2024, 0},
                          {4, kAbril2024, -1}, {5, kMarco2024, 0},  {6, kAbril2024, 3}};
  std::vector<std::uint32_t> posicoes;
  std::map<std::pair<std::uint16_t, std::uint32_t>, std::uint32_t> atual;  // (month, position) -> seed
  for (const Passo& p : passos) {
    SCOPED_TRACE("semente " + std::to_string(p.semente));
    CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado;
    chamado.reg = Chamado(p.semente);
    const std::uint32_t lPosicao = p.iSobre < 0 ? 0 : posicoes[p.iSobre];
    std::uint32_t lGravada = 0;
    ASSERT_EQ(srv.s.GravaAtendimento(p.iMA, lPosicao, chamado.reg, &lGravada), S_OK);
    if (p.iSobre >= 0) {
      EXPECT_EQ(lGravada, lPosicao);
    }
    posicoes.push_back(lGravada);
    atual[{p.iMA, lGravada}] = p.semente;
    ConfereLido(srv, p.iMA, lGravada, chamado.reg);
  }
  for (const auto& [onde, semente] : atual) {
    SCOPED_TRACE("ao final, semente " + std::to_string(semente));
    CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado;
    chamado.reg = Chamado(semente);
    ConfereLido(srv, onde.first, onde.second, chamado.reg);
  }

  // The light read: the record, no list, no text.
  CQVRegistroPs<_REG_ATENDIMENTO_PS> leve;
  ASSERT_EQ(srv.s.LeAtendimentoLight(kMarco2024, posicoes[0], &leve.reg), S_OK);
  EXPECT_EQ(leve.reg.lNumeroAtendimento, 1005u);
  EXPECT_EQ(leve.reg.iQuantidadeServicoAtend, 0u);
  EXPECT_EQ(leve.reg.pServicos, nullptr);
  EXPECT_EQ(leve.reg.bsComentario, nullptr);
  EXPECT_TRUE(QVTesteLinhasErro().empty());
}

// A call without any text or list reads back empty; the settings go and
// come back with their label, and only the user's save leaves a log row.
TEST_F(Atendimento, ChamadoVazioEPropriedades) {
  Servidor srv("VAZIO E PROPRIEDADES");
  ASSERT_EQ(srv.hr, S_OK);
  _REG_ATENDIMENTO_PS vazio;
  Zera(vazio);
  vazio.lNumeroAtendimento = 7;
  std::uint32_t lGravada = 0;
  ASSERT_EQ(srv.s.GravaAtendimento(kMarco2024, 0, vazio, &lGravada), S_OK);
  EXPECT_EQ(lGravada, 1u);
  ConfereLido(srv, kMarco2024, lGravada, vazio);

  CQVRegistroPs<_REG_PROPRIEDADES_ATENDIMENTO_PS> lidas, enviadas;
  ASSERT_EQ(srv.s.LePropriedades(&lidas.reg, 0), S_OK);
  EXPECT_EQ(lidas.reg.lProximoNumero, 8u);  // a new company starts at 1; the save of 7 raised it
  EXPECT_EQ(lidas.reg.cListarDescricaoServicoNaNF, 1);
  enviadas.reg = Amostra<_REG_PROPRIEDADES_ATENDIMENTO_PS>(9);
  for (std::int32_t* b : {&enviadas.reg.bImpressaoWord, &enviadas.reg.bSugerirNumero, &enviadas.reg.bAlterarNumAtend,
                          &enviadas.reg.bAlterarDataDeEmissao, &enviadas.reg.bInformarDataConclusao,
                          &enviadas.reg.bControleDeHoras})
    *b = Bool(*b);
  Zera(enviadas.reg.cFiller), Zera(enviadas.reg.rNomeCliente2.cFiller), Zera(enviadas.reg.rNomeCliente2.pFiller);
  ASSERT_EQ(srv.s.GravaPropriedades(enviadas.reg, 0), S_OK);
  QVLibera(&lidas.reg);
  ASSERT_EQ(srv.s.LePropriedades(&lidas.reg, 0), S_OK);
  enviadas.reg.lPtrNomeSttCliente2 = lidas.reg.lPtrNomeSttCliente2;
  EXPECT_NE(lidas.reg.lPtrNomeSttCliente2, 0u);
  EXPECT_TRUE(QVIguais(enviadas.reg, lidas.reg))
      << Diferenca(QVDescritor<_REG_PROPRIEDADES_ATENDIMENTO_PS>(), reinterpret_cast<unsigned char*>(&enviadas.reg),
                   reinterpret_cast<unsigned char*>(&lidas.reg), "propriedades");
  auto pBanco = QVTesteBancoSuite();
  CQVComandoSuite cmd;
  auto trava = pBanco->Trava();
  ASSERT_EQ(pBanco->Prepara("SELECT COUNT(*), MAX(texto) FROM log_transacoes WHERE operacao = 'A'", &cmd), S_OK);
  bool bLinha = false;
  ASSERT_EQ(cmd.Passo(&bLinha), S_OK);
  EXPECT_EQ(cmd.Inteiro(0), 1);
  EXPECT_EQ(cmd.Texto(1), "Alteração das Propriedades");
}

// Numbers are unique over all months: a clash counts up from the number
// asked for, 0 takes the first free one, a call keeps its own number, and
// the suggestion only grows. The check of slot 19 changes no file.
TEST_F(Atendimento, NumerosUnicosSugestaoEConsulta) {
  Servidor srv("NUMERACAO");
  ASSERT_EQ(srv.hr, S_OK);
  auto grava = [&](std::uint16_t iMA, std::uint32_t lPosicao, std::uint32_t lNumero) {
    _REG_ATENDIMENTO_PS a;
    Zera(a);
    a.lNumeroAtendimento = lNumero;
    std::uint32_t lGravada = 0;
    EXPECT_EQ(srv.s.GravaAtendimento(iMA, lPosicao, a, &lGravada), S_OK);
    CQVRegistroPs<_REG_ATENDIMENTO_PS> lido;
    EXPECT_EQ(srv.s.LeAtendimentoLight(iMA, lGravada, &lido.reg), S_OK);
    return std::pair{lGravada, lido.reg.lNumeroAtendimento};
  };
  auto sugestao = [&] {
    CQVRegistroPs<_REG_PROPRIEDADES_ATENDIMENTO_PS> p;
    EXPECT_EQ(srv.s.LePropriedades(&p.reg, 0), S_OK);
    return p.reg.lProximoNumero;
  };
  grava(kMarco2024, 0, 5);
  grava(kAbril2024, 0, 6);
  const auto [lPos9, n9] = grava(kMarco2024, 0, 9);
  EXPECT_EQ(n9, 9u);
  EXPECT_EQ(sugestao(), 10u);
  struct Caso {
    std::uint16_t iMA;
    bool bProprio;  // rewrites the call numbered 9 instead of adding one
    std::uint32_t lPedido, lEsperado, lSugestao;
  };
  const Caso casos[] = {
      {kAbril2024, false, 5, 7, 10},   // 5 and 6 taken (in two months): 7
      {kMarco2024, false, 0, 1, 10},   // 0: the first free one
      {kMarco2024, true, 9, 9, 10},    // its own number is no clash
      {kAbril2024, false, 41, 41, 42},
      {kAbril2024, false, 9, 10, 42},  // the suggestion never falls back
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE("pedido " + std::to_string(c.lPedido));
    EXPECT_EQ(grava(c.iMA, c.bProprio ? lPos9 : 0, c.lPedido).second, c.lEsperado);
    EXPECT_EQ(sugestao(), c.lSugestao);
  }

  const auto antes = Arquivos(srv.s.GetDiretorioDados());
  for (const auto& [lNumero, bLivre] : std::vector<std::pair<std::uint32_t, std::int32_t>>{
           {5, 0}, {6, 0}, {7, 0}, {8, 1}, {0, 0}, {100, 1}}) {
    std::int32_t bNaoDuplicado = -1;
    EXPECT_EQ(srv.s.ConsistirNumeroAtendimentoPS(lNumero, &bNaoDuplicado), S_OK);
    EXPECT_EQ(bNaoDuplicado, bLivre) << lNumero;
  }
  EXPECT_EQ(Arquivos(srv.s.GetDiretorioDados()), antes);
}

// The version record gates the opening: a new company starts current, with
// its version and settings written; newer files are refused and so are
// older ones (their conversion is not here), both left as they were.
TEST_F(Atendimento, NovaAtualMaisNovaEAntiga) {
  {
    Servidor nova("NOVA");
    ASSERT_EQ(nova.hr, S_OK);
    REG_GE_ATENDIMENTOTECNICO_VERSAO v;
    ASSERT_EQ(nova.db()->m_ArqVersao.Le(&v), S_OK);
    EXPECT_EQ(v.usVersao, 2);
  }
  struct Caso {
    const char* empresa;
    std::uint16_t usVersao;  // 0: no version file
    const char* arquivoAntigo;
    HRESULT hr;
  };
  const Caso casos[] = {
      {"MAIS NOVA", 3, nullptr, E_QVCR_VERSAO_DADOS_SUPERIOR_VERSAO_SISTEMA},
      {"ANTIGA SEM VERSAO", 0, "GEATEND0720.dat", E_QVCR_VERSAO_DADOS_INFERIOR_SEM_CONVERSAO},
      {"ANTIGA VERSAO 1", 1, "GEAtProV2.dat", E_QVCR_VERSAO_DADOS_INFERIOR_SEM_CONVERSAO},
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.empresa);
    QVTesteLimpaLog();
    const _REG_DF_INICIALIZAPS regps = QVTesteInicializaPS(c.empresa);
    std::string sDir;
    ASSERT_EQ(QVSessaoSuite().GetDiretorioDadosModulo(QV_GE, c.empresa, &sDir), S_OK);
    if (c.usVersao != 0) {
      REG_GE_ATENDIMENTOTECNICO_VERSAO v{};
      v.usVersao = c.usVersao;
      const CQVProfilerEmpresa identidade(c.empresa, kQVTesteUsuario, 1);
      ASSERT_EQ(CQVDataBaseUtil::GravaSingleReg(&identidade, QV_GE, v, kQVArquivoVersaoAtendimento), S_OK);
    }
    if (c.arquivoAntigo != nullptr) QVTesteGravaBytes(sDir + "/" + c.arquivoAntigo, std::string(256, '\x01'));
    const auto antes = Arquivos(sDir);
    CGeServidorAtendimento s;
    EXPECT_EQ(s.Inicializa(regps), c.hr);
    EXPECT_EQ(s.GetDataBase(), nullptr);
    EXPECT_EQ(Arquivos(sDir), antes);
    EXPECT_GE(QVTesteLinhasCom({QVTesteHrNoLog(c.hr)}), 1u);
  }
}

// One company, one database: a second object joins the first's and sees
// its calls; the last one to leave closes it.
TEST_F(Atendimento, DoisObjetosDaEmpresaCompartilhamOBanco) {
  auto a = std::make_unique<Servidor>("COMPARTILHADA");
  auto b = std::make_unique<Servidor>("COMPARTILHADA");
  ASSERT_EQ(a->hr, S_OK);
  ASSERT_EQ(b->hr, S_OK);
  ASSERT_EQ(a->db(), b->db());
  _REG_ATENDIMENTO_PS vazio;
  Zera(vazio);
  std::uint32_t lGravada = 0;
  ASSERT_EQ(a->s.GravaAtendimento(kMarco2024, 0, vazio, &lGravada), S_OK);
  a.reset();
  CQVRegistroPs<_REG_ATENDIMENTO_PS> lido;
  EXPECT_EQ(b->s.LeAtendimentoLight(kMarco2024, lGravada, &lido.reg), S_OK);
  EXPECT_EQ(lido.reg.lNumeroAtendimento, 1u);
  auto& container = CQVContainerFacade<CQVDataBase_GE_AtendimentoTecnico>::Instancia();
  EXPECT_EQ(container.GetQtdUsuarios("COMPARTILHADA", QV_GE), 1);
  b.reset();
  EXPECT_FALSE(container.EstaAberto("COMPARTILHADA", QV_GE));
}

// Bad input answers a clear status, writes its error line and changes
// nothing on disk: a month code 0, a position past the month's end, a list
// whose count comes without its array (at any depth), a stored call whose
// sub-record run lies past its file's end.
TEST_F(Atendimento, StatusLinhaENadaMudaNoDisco) {
  Servidor srv("ENTRADA RUIM");
  ASSERT_EQ(srv.hr, S_OK);
  CQVRegistroPs<_REG_ATENDIMENTO_PS> bom;
  bom.reg = Chamado(11);
  std::uint32_t lBom = 0, lDanificado = 0;
  ASSERT_EQ(srv.s.GravaAtendimento(kMarco2024, 0, bom.reg, &lBom), S_OK);
  ASSERT_EQ(srv.s.GravaAtendimento(kMarco2024, 0, bom.reg, &lDanificado), S_OK);
  {
    // A stored call whose services run past the end of the month's file.
    auto* db = srv.db();
    std::lock_guard trava(db->Trava());
    ASSERT_EQ(db->SelecionaMes(kMarco2024), S_OK);
    REG_ATENDIMENTO_V2 reg;
    ASSERT_EQ(db->m_ArqAtendimento.Le(lDanificado, &reg), S_OK);
    reg.lPonteiroServicoAtend = static_cast<std::uint32_t>(db->m_ArqServico.GetQtdRegistros()) + 1;
    QVUInt ui = lDanificado;
    ASSERT_EQ(db->m_ArqAtendimento.Grava(ui, reg), S_OK);
  }

  auto semArray = [&](auto muda) {
    return [&, muda](std::uint32_t* pl) {
      _REG_ATENDIMENTO_PS a = bom.reg;  // shallow: only counts and pointers change
      muda(a);
      return srv.s.GravaAtendimento(kMarco2024, 0, a, pl);
    };
  };
  struct Caso {
    const char* nome;
    std::function<HRESULT(std::uint32_t*)> chamada;
    HRESULT hr;
    const char* linha = nullptr;  // the damaged stored list: the check that found it, among its callers' lines
  };
  CQVRegistroPs<_REG_ATENDIMENTO_PS> lido;
  const Caso casos[] = {
      {"le no mes 0", [&](std::uint32_t*) { return srv.s.LeAtendimento(0, lBom, &lido.reg); }, E_INVALIDARG},
      {"grava no mes 0", [&](std::uint32_t* pl) { return srv.s.GravaAtendimento(0, 0, bom.reg, pl); }, E_INVALIDARG},
      {"le alem do fim", [&](std::uint32_t*) { return srv.s.LeAtendimento(kMarco2024, 3, &lido.reg); },
       E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO},
      {"grava alem do fim", [&](std::uint32_t* pl) { return srv.s.GravaAtendimento(kMarco2024, 4, bom.reg, pl); },
       E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO},
      {"servicos nulos", semArray([](_REG_ATENDIMENTO_PS& a) { a.pServicos = nullptr; }), E_INVALIDARG},
      {"sessoes nulas", semArray([](_REG_ATENDIMENTO_PS& a) {
         static _REG_SERVICO_ATENDIMENTO_PS s;
         s = a.pServicos[0];
         s.pSessoes = nullptr;
         a.pServicos = &s;
         a.iQuantidadeServicoAtend = 1;
       }), E_INVALIDARG},
      {"gerenciais nulos", semArray([](_REG_ATENDIMENTO_PS& a) {
         static _REG_CLASSIFICACAO_GE_PS c;
         c = a.pClassificacoes[0];
         c.lQuantidadeGerencial = 2, c.pGerenciais = nullptr;
         a.pClassificacoes = &c;
         a.lQuantidadeClassificacao = 1;
       }), E_INVALIDARG},
      {"eventos nulos", semArray([](_REG_ATENDIMENTO_PS& a) { a.regListaEventosGoogle.pListaEventos = nullptr; }),
       E_INVALIDARG},
      {"deducoes nulas", semArray([](_REG_ATENDIMENTO_PS& a) {
         a.regRetencoesSomarItensNF.iQtdDeducaoBCINSS = 1, a.regRetencoesSomarItensNF.pRegDeducoesBCINSS = nullptr;
       }), E_INVALIDARG},
      {"le chamado danificado",
       [&](std::uint32_t*) { return srv.s.LeAtendimento(kMarco2024, lDanificado, &lido.reg); },
       E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO, "QVValidaLista(pGEAtendimentoDB->m_ArqServico"},
      {"grava sobre chamado danificado",
       [&](std::uint32_t* pl) { return srv.s.GravaAtendimento(kMarco2024, lDanificado, bom.reg, pl); },
       E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO, "QVValidaLista(pGEAtendimentoDB->m_ArqServico"},
  };
  const auto antes = Arquivos(srv.s.GetDiretorioDados());
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.nome);
    QVTesteLimpaLog();
    std::uint32_t lGravada = 99;
    EXPECT_EQ(c.chamada(&lGravada), c.hr);
    EXPECT_EQ(lGravada == 99 || lGravada == 0, true);
    if (c.linha == nullptr) {
      EXPECT_EQ(QVTesteLinhasErro().size(), 1u);
      EXPECT_EQ(QVTesteLinhasCom({QVTesteHrNoLog(c.hr)}), 1u);
    } else {
      EXPECT_EQ(QVTesteLinhasCom({QVTesteHrNoLog(c.hr), c.linha}), 1u);
    }
    EXPECT_EQ(lido.reg.pServicos, nullptr);  // a failed read hands out nothing
    EXPECT_EQ(Arquivos(srv.s.GetDiretorioDados()), antes);
  }
  // The good call is still whole.
  ConfereLido(srv, kMarco2024, lBom, bom.reg);
}

// A server process killed (SIGKILL) at random instants in the middle of
// saves, again and again: every save it answered with success reads back
// whole, field for field, and every file of the company passes the checks
// of `zelkorin db verify`.
TEST_F(Atendimento, ServidorMortoNoMeioDasGravacoesNadaPerde) {
  const std::string empresa = "MORTO NO MEIO";
  std::string sDir;
  {
    Servidor srv(empresa);
    ASSERT_EQ(srv.hr, S_OK);
    sDir = srv.s.GetDiretorioDados();
  }
  // (month, position) -> seed of every save answered with success.
  std::map<std::pair<std::uint16_t, std::uint32_t>, std::uint32_t> confirmados;
  std::mt19937 gerador(20261123);
  for (int volta = 0; volta < 12; ++volta) {
    // The child saves calls of seeds base, base + 1... alternating months,
    // and publishes each position (negative: April) once answered. Each
    // round has seeds (and so call numbers) of its own: a save killed before
    // its answer may be there or not.
    const std::uint32_t base = 1 + static_cast<std::uint32_t>(volta) * 1000;
    std::uint32_t semente = base;
    CQVProcessoFilho filho([&empresa, base](std::int32_t n) -> std::int32_t {
      Servidor srv(empresa);
      if (FAILED(srv.hr)) return srv.hr;
      for (std::int32_t i = 0; i < n; ++i) {
        CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado;
        chamado.reg = Chamado(base + static_cast<std::uint32_t>(i));
        const bool bAbril = i % 2 != 0;
        std::uint32_t lPosicao = 0;
        const HRESULT hr = srv.s.GravaAtendimento(bAbril ? kAbril2024 : kMarco2024, 0, chamado.reg, &lPosicao);
        if (FAILED(hr)) return hr;
        CQVProcessoFilho::Publica(bAbril ? -static_cast<std::int32_t>(lPosicao) : static_cast<std::int32_t>(lPosicao));
      }
      return S_OK;
    });
    ASSERT_TRUE(filho.Envia(1000));
    // Killed somewhere in the saves that follow its first answer.
    std::int32_t r = filho.Resposta();
    std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution<int>(0, 80'000)(gerador)));
    filho.Mata();
    for (; r != -1 && r != S_OK; r = filho.Resposta()) {
      ASSERT_GT(r, -1'000'000) << "a failed save: " << r;
      confirmados[{r < 0 ? kAbril2024 : kMarco2024, static_cast<std::uint32_t>(r < 0 ? -r : r)}] = semente++;
    }
  }
  ASSERT_GE(confirmados.size(), 12u);

  Servidor srv(empresa);
  ASSERT_EQ(srv.hr, S_OK);
  for (const auto& [onde, s] : confirmados) {
    SCOPED_TRACE("semente " + std::to_string(s));
    CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado;
    chamado.reg = Chamado(s);
    ConfereLido(srv, onde.first, onde.second, chamado.reg);
  }
  for (const auto& [sNome, sConteudo] : Arquivos(sDir)) {
    if (!QVNomesIguais(CQVDataBaseUtil::Extensao(sNome), "dat") || QVNomesIguais(sNome.substr(0, 7), "XXMARCA"))
      continue;
    const QVArquivoGE* conhecido = QVProcuraArquivoGE(sNome);
    const QVResultadoVerificacao r =
        QVVerificaArquivo(sDir + "/" + sNome, conhecido ? conhecido->tipo : EQVTipoConteudo::Desconhecido,
                          conhecido ? conhecido->tamRegistro : 0);
    EXPECT_EQ(r.hr, S_OK) << sNome;
  }
}

// The call frame, over both classes: initialisation checks, the standard
// business frame, the discard rule, the guard and the usage statistics.
#include "core/QVRPCDLL/T_QVUnknown.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>
#include <functional>
#include <nlohmann/json.hpp>

#include "df/qvlibex/QVException.h"
#include "ge/zelkorin/CQVGE_Atendimento.h"
#include "ge/zelkorin/CQVGE_Projeto.h"
#include "platform/QVTaskMem.h"
#include "tests/support/QVTestSupport.h"

namespace {

// What the stand-in server does when its business method is called.
using Acao = std::function<HRESULT()>;

struct Observacao {
  int chamadas = 0;
  bool acessoDefaultEraOServidor = false;
  bool destruido = false;
};

template <class Base>
class CServidorFalso : public Base {
 public:
  CServidorFalso(Acao acao, Observacao* obs) : m_Acao(std::move(acao)), m_pObs(obs) {}
  ~CServidorFalso() override { m_pObs->destruido = true; }

  HRESULT Executa() {
    ++m_pObs->chamadas;
    m_pObs->acessoDefaultEraOServidor = CQVBaseParaRotinas::GetAcessoDefault() == this;
    return m_Acao();
  }

  // The atendimento server's business method under test.
  HRESULT LeAtendimento(std::uint16_t, std::uint32_t, _REG_ATENDIMENTO_PS*) { return Executa(); }
  // The project server's.
  HRESULT LeRegistro(std::uint32_t, _REG_PROJETO_ATENDIMENTO_PS*) { return Executa(); }

 private:
  Acao m_Acao;
  Observacao* m_pObs;
};

class CServidorAtendimentoFalso : public CServidorFalso<CGeServidorAtendimento> {
 public:
  using CServidorFalso::CServidorFalso;
  HRESULT LeAtendimento(std::uint16_t, std::uint32_t, _REG_ATENDIMENTO_PS*) override { return Executa(); }
};

class CServidorProjetoFalso : public CServidorFalso<CGeProjetoBase> {
 public:
  using CServidorFalso::CServidorFalso;
  HRESULT LeRegistro(std::uint32_t, _REG_PROJETO_ATENDIMENTO_PS*) override { return Executa(); }
};

struct Atendimento {
  using Classe = CQVGE_Atendimento;
  using Falso = CServidorAtendimentoFalso;
  static constexpr const char* kMetodo = "CQVGE_Atendimento::LeAtendimento";
  static HRESULT Negocio(Classe* o) {
    _REG_ATENDIMENTO_PS reg;
    return o->LeAtendimento(1, 1, &reg);
  }
};

struct Projeto {
  using Classe = CQVGE_Projeto;
  using Falso = CServidorProjetoFalso;
  static constexpr const char* kMetodo = "CQVGE_Projeto::LeRegistro";
  static HRESULT Negocio(Classe* o) {
    _REG_PROJETO_ATENDIMENTO_PS reg;
    return o->LeRegistro(1, &reg);
  }
};

// An object of class T::Classe whose server runs `acao`, released at the end.
template <class T>
struct Objeto {
  explicit Objeto(Acao acao = [] { return S_OK; })
      : p(new typename T::Classe([a = std::move(acao), o = &obs] { return std::make_unique<typename T::Falso>(a, o); })) {}
  ~Objeto() { p->Release(); }
  typename T::Classe* operator->() const { return p; }
  HRESULT Negocio() { return T::Negocio(p); }
  HRESULT Inicializa() { return p->Inicializa_Padrao(QVTesteInicializaPS()); }

  Observacao obs;
  typename T::Classe* p;
};

std::size_t LinhasCom(const std::string& trecho) {
  std::size_t n = 0;
  for (const std::string& l : QVTesteLinhasErro()) n += l.find(trecho) != std::string::npos;
  return n;
}

// A page no one may touch: writing there is an invalid memory access.
void EscritaInvalida() {
  static void* pagina = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  *static_cast<volatile int*>(pagina) = 1;
}

[[gnu::noinline]] int Recursao(volatile char* anterior, int n) {
  volatile char quadro[512];
  quadro[0] = static_cast<char>(n + (anterior != nullptr ? anterior[0] : 0));
  if (n < 0x7FFFFFFF) return Recursao(quadro, n + 1) + quadro[0];
  return 0;
}

template <class T>
class FrameTest : public ::testing::Test {
 protected:
  void SetUp() override { QVTesteLimpaLog(); }
};

using Classes = ::testing::Types<Atendimento, Projeto>;
TYPED_TEST_SUITE(FrameTest, Classes);

}  // namespace

TYPED_TEST(FrameTest, ObjetoNovoNaoExecutaNegocioNemRegistraNada) {
  Objeto<TypeParam> o;
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  EXPECT_EQ(o.obs.chamadas, 0);
  _REG_DF_ERROPS erro;
  std::memset(&erro, 0xAB, sizeof erro);
  EXPECT_EQ(o->GetUltimoErro(&erro), S_OK);
  const _REG_DF_ERROPS zero{};
  EXPECT_EQ(std::memcmp(&erro, &zero, sizeof erro), 0);
  EXPECT_TRUE(o->GetEstatisticas().empty());
  EXPECT_TRUE(QVTesteLinhasErro().empty());
}

TYPED_TEST(FrameTest, KeepAliveAntesEDepoisDaInicializacao) {
  Objeto<TypeParam> o;
  std::int32_t ok = 0;
  EXPECT_EQ(o->KeepAlive(&ok), S_OK);
  EXPECT_EQ(ok, 1);
  ASSERT_EQ(o.Inicializa(), S_OK);
  ok = 0;
  EXPECT_EQ(o->KeepAlive(&ok), S_OK);
  EXPECT_EQ(ok, 1);
  EXPECT_TRUE(o->GetEstatisticas().count("EMPRESA_TESTE"));  // only the initialisation was counted
  std::size_t celulas = 0;
  for (const auto& [dia, classes] : o->GetEstatisticas().at("EMPRESA_TESTE"))
    for (const auto& [classe, metodos] : classes) celulas += metodos.size();
  EXPECT_EQ(celulas, 1u);
}

TYPED_TEST(FrameTest, VerificacoesDoRegistroDeInicializacaoNaOrdem) {
  Objeto<TypeParam> o;
  _REG_DF_INICIALIZAPS reg = QVTesteInicializaPS();
  reg.usVersaoVireo = 117;  // the CRC is now wrong too: the version is looked at first
  EXPECT_EQ(o->Inicializa_Padrao(reg), QVHr(0x81080BFDu));
  EXPECT_EQ(LinhasCom("hr = E_QVCR_VERSAO_INCOMPATIVEL\t"), 1u);

  reg = QVTesteInicializaPS();
  reg.szEmpresa[3] ^= 1;  // one byte of the first 288
  EXPECT_EQ(o->Inicializa_Padrao(reg), QVHr(0x81080C17u));
  EXPECT_EQ(LinhasCom("hr = E_QVCR_CRC_INICIALIZACAO_INVALIDO\t"), 1u);

  auto comCrc = [](_REG_DF_INICIALIZAPS r) {
    r.uiCRC = QVCrcInicializaPS(r);
    return r;
  };
  reg = QVTesteInicializaPS();
  reg.cControle = 'A';
  EXPECT_EQ(o->Inicializa_Padrao(comCrc(reg)), QVHr(0x81080C19u));
  for (auto esvazia : std::initializer_list<std::function<void(_REG_DF_INICIALIZAPS&)>>{
           [](auto& r) { r.szAplicativo[0] = 0; }, [](auto& r) { r.szModuleName[0] = 0; },
           [](auto& r) { r.szArquivoFonte[0] = 0; }, [](auto& r) { r.ulLinhaFonte = 0; }}) {
    reg = QVTesteInicializaPS();
    esvazia(reg);
    EXPECT_EQ(o->Inicializa_Padrao(comCrc(reg)), QVHr(0x81080C19u));
  }
  EXPECT_EQ(LinhasCom("hr = E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA\t"), 5u);

  // None of these reached the server or changed the frame's copy.
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  EXPECT_EQ(o->GetRegistroInicializacao().usVersaoVireo, 0);
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o->GetRegistroInicializacao().uiCRC, QVTesteInicializaPS().uiCRC);
  EXPECT_EQ(o.Negocio(), S_OK);
}

TYPED_TEST(FrameTest, InicializacaoRecusadaPelaSessaoZeraACopia) {
  Objeto<TypeParam> o;
  // A company that cannot be a folder has no data directory.
  EXPECT_EQ(o->Inicializa_Padrao(QVTesteInicializaPS("..")), QVHr(0x80040931u));
  EXPECT_EQ(o->GetRegistroInicializacao().usVersaoVireo, 0);
  EXPECT_TRUE(o->TemServidor());
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  EXPECT_EQ(LinhasCom("hr = pfInSEHFuncao()\t"), 1u);
  // A second initialisation goes through every step again.
  EXPECT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), S_OK);
}

TYPED_TEST(FrameTest, CodigoDeDescarteDestroiOServidor) {
  Objeto<TypeParam> o([] { return QVHr(0x8004EAC5u); });
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), QVHr(0x8004EAC5u));
  EXPECT_TRUE(o.obs.destruido);
  EXPECT_FALSE(o->TemServidor());
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  EXPECT_EQ(o.obs.chamadas, 1);
  EXPECT_EQ(o.Inicializa(), QVHr(0x81080AA8u));
  _REG_DF_ERROPS erro;
  EXPECT_EQ(o->GetUltimoErro(&erro), S_OK);
  EXPECT_EQ(erro.hr, 0);  // no server, no error to copy
}

TYPED_TEST(FrameTest, FalhaComumNaoDescartaEPreencheOUltimoErro) {
  Objeto<TypeParam> o([] { return E_QVCR_ARQUIVO_NAO_EXISTE; });
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), E_QVCR_ARQUIVO_NAO_EXISTE);
  EXPECT_EQ(o.Negocio(), E_QVCR_ARQUIVO_NAO_EXISTE);
  EXPECT_FALSE(o.obs.destruido);
  _REG_DF_ERROPS erro;
  ASSERT_EQ(o->GetUltimoErro(&erro), S_OK);
  EXPECT_EQ(erro.hr, E_QVCR_ARQUIVO_NAO_EXISTE);
  EXPECT_EQ(erro.usNumeroServidor, 9);
  EXPECT_STREQ(erro.szEmpresa, "EMPRESA_TESTE");
  EXPECT_GT(std::strlen(erro.cMensagem), 0u);
  EXPECT_EQ(LinhasCom(std::string("\t") + TypeParam::kMetodo + "\t"), 2u);
  EXPECT_EQ(LinhasCom("\tcore/QVRPCDLL/T_QVUnknown\t"), 2u);
  EXPECT_EQ(LinhasCom("hr = pfInSEHFuncao()\thr = 0X810809E3"), 2u);
}

TYPED_TEST(FrameTest, ExcecaoEhTraduzidaContadaENaoDescarta) {
  Objeto<TypeParam> o([]() -> HRESULT { throw new CQVException(1, 0, 5); });
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), QVHr(0x80040005u));
  EXPECT_TRUE(o->TemServidor());
  EXPECT_EQ(LinhasCom("hr = QVTranslateThrownExceptionToHresult()\t"), 1u);
  std::string classe, metodo;
  QVSeparaNomeMetodo(TypeParam::kMetodo, &classe, &metodo);
  const auto& celulas = o->GetEstatisticas().at("EMPRESA_TESTE").at(QVHoje()).at(classe).at(metodo);
  ASSERT_EQ(celulas.size(), 1u);
  EXPECT_EQ(celulas.begin()->first, 9);  // the object's code: the module it serves
  EXPECT_EQ(celulas.begin()->second.ulChamadas, 1u);
  // The default access is not left behind by an exception either.
  EXPECT_EQ(CQVBaseParaRotinas::GetAcessoDefault(), nullptr);
}

TYPED_TEST(FrameTest, ExcecaoComCodigoDeDescarteNaoDescarta) {
  // Only a normal return with a structured-exception status discards.
  Objeto<TypeParam> o([]() -> HRESULT { throw CQVExceptionEx(QVHr(0x8004EAC5u), 0, 0, "x"); });
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), QVHr(0x8004EAC5u));
  EXPECT_TRUE(o->TemServidor());
}

TYPED_TEST(FrameTest, EscritaInvalidaViraCodigoEOProcessoContinua) {
  Objeto<TypeParam> o([] {
    EscritaInvalida();
    return S_OK;
  });
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), QVHr(0x8004EAC5u));
  EXPECT_FALSE(o->TemServidor());
  EXPECT_EQ(QVUltimoCodigoSEH(), 0xC0000005u);
  EXPECT_NE(QVUltimaPilhaSEH(), "");
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  EXPECT_EQ(LinhasCom("hr = pfInSEHFuncao()\thr = 0X8004EAC5"), 1u);
}

TYPED_TEST(FrameTest, EstouroDePilhaViraCodigoEOProcessoContinua) {
  Objeto<TypeParam> o([] { return static_cast<HRESULT>(Recursao(nullptr, 0)); });
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), QVHr(0x8004EADAu));
  EXPECT_FALSE(o->TemServidor());
  EXPECT_EQ(QVUltimoCodigoSEH(), 0xC00000FDu);
  // The thread's stack is whole again: a second object works normally.
  Objeto<TypeParam> outro;
  ASSERT_EQ(outro.Inicializa(), S_OK);
  EXPECT_EQ(outro.Negocio(), S_OK);
}

TYPED_TEST(FrameTest, ParametroInvalidoViraExcecaoComONomeDoMetodo) {
  Objeto<TypeParam> o([]() -> HRESULT {
    QVParametroInvalido("p != nullptr", "Rotina", "arquivo.cpp", 10);
    return S_OK;
  });
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), E_INVALIDARG);
  EXPECT_TRUE(o->TemServidor());
}

TYPED_TEST(FrameTest, AcessoDefaultSoDuranteAChamada) {
  Objeto<TypeParam> o;
  ASSERT_EQ(o.Inicializa(), S_OK);
  ASSERT_EQ(o.Negocio(), S_OK);
  EXPECT_TRUE(o.obs.acessoDefaultEraOServidor);
  EXPECT_EQ(CQVBaseParaRotinas::GetAcessoDefault(), nullptr);
}

TYPED_TEST(FrameTest, FalhaNaConstrucaoDoServidor) {
  auto* objeto = new typename TypeParam::Classe([]() -> std::unique_ptr<typename TypeParam::Falso> {
    throw std::bad_alloc();
  });
  EXPECT_EQ(objeto->GetHrConstruct(), QVHr(0x8004EA64u));
  EXPECT_FALSE(objeto->TemServidor());
  EXPECT_EQ(LinhasCom("hr = m_hrConstruct\t"), 1u);
  EXPECT_EQ(TypeParam::Negocio(objeto), QVHr(0x81080A04u));
  EXPECT_EQ(objeto->Inicializa_Padrao(QVTesteInicializaPS()), QVHr(0x81080AA8u));
  std::int32_t ok = 0;
  EXPECT_EQ(objeto->KeepAlive(&ok), S_OK);
  EXPECT_EQ(ok, 1);
  objeto->Release();
}

TYPED_TEST(FrameTest, EstatisticasPelaFuncaoGenerica) {
  Objeto<TypeParam> o;
  _REG_DF_FUNCAO_GENERICAPS entrada{};
  _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
  EXPECT_EQ(o->FuncaoGenerica(QV_FUNCAO_GENERICA_ESTATISTICAS_USO, entrada, &saida), QVHr(0x81080A04u));
  EXPECT_EQ(saida, nullptr);
  ASSERT_EQ(o.Inicializa(), S_OK);
  for (int i = 0; i < 3; ++i) ASSERT_EQ(o.Negocio(), S_OK);
  ASSERT_EQ(o->FuncaoGenerica(QV_FUNCAO_GENERICA_ESTATISTICAS_USO, entrada, &saida), S_OK);
  ASSERT_NE(saida, nullptr);
  ASSERT_EQ(saida->ulQtdBytes, std::strlen(reinterpret_cast<char*>(saida->pListaBytes)) + 1);
  const auto j = nlohmann::json::parse(reinterpret_cast<char*>(saida->pListaBytes));
  std::string classe, metodo;
  QVSeparaNomeMetodo(TypeParam::kMetodo, &classe, &metodo);
  const auto& celula = j["objeto"]["EMPRESA_TESTE"][QVDiaTexto(QVHoje())][classe][metodo]["9"];
  EXPECT_EQ(celula["chamadas"], 3);
  EXPECT_LE(celula["menorMs"].get<std::uint64_t>(), celula["maiorMs"].get<std::uint64_t>());
  EXPECT_GE(j["processo"]["EMPRESA_TESTE"][QVDiaTexto(QVHoje())][classe][metodo]["9"]["chamadas"].get<int>(), 3);
  EXPECT_GE(j["servidor"]["objetosAtivos"].get<int>(), 1);
  QVLibera(saida);
  CoTaskMemFree(saida);

  // Other numbers go to the server's generic function.
  EXPECT_EQ(o->FuncaoGenerica(1, entrada, &saida), E_NOTIMPL);
  EXPECT_EQ(saida, nullptr);
}

TEST(QVFrame, NomesDosMetodosNasEstatisticas) {
  std::string classe, metodo;
  QVSeparaNomeMetodo("CQVGE_Atendimento::LeAtendimento", &classe, &metodo);
  EXPECT_EQ(classe + "|" + metodo, "CQVGE_Atendimento|LeAtendimento");
  QVSeparaNomeMetodo("T_QVUnknown<struct IQVGE_Atendimento,class CGeServidorAtendimento>::Inicializa_Padrao",
                     &classe, &metodo);
  EXPECT_EQ(classe + "|" + metodo, "T_QVUnknown|Inicializa_Padrao");
  QVSeparaNomeMetodo("A::B::C", &classe, &metodo);
  EXPECT_EQ(classe + "|" + metodo, "A|B");
}

TEST(QVFrame, MenorDuracaoComecaNoMaiorValor) {
  QVCelulaEstatistica c;
  EXPECT_EQ(c.ulMenorMs, std::numeric_limits<std::uint64_t>::max());
  c.Adiciona(7);
  c.Adiciona(3);
  c.Adiciona(5);
  EXPECT_EQ(c.ulChamadas, 3u);
  EXPECT_EQ(c.ulTotalMs, 15u);
  EXPECT_EQ(c.ulMaiorMs, 7u);
  EXPECT_EQ(c.ulMenorMs, 3u);
}

TEST(QVFrame, QueryInterfaceDasDuasClasses) {
  auto* a = new CQVGE_Atendimento();
  void* p = nullptr;
  EXPECT_EQ(a->QueryInterface(IID_IQVGE_Atendimento, &p), S_OK);
  EXPECT_EQ(p, static_cast<IQVGE_Atendimento*>(a));
  EXPECT_EQ(a->QueryInterface(IID_IQVUnknown, &p), S_OK);
  EXPECT_EQ(a->QueryInterface(IID_IQVGE_Projeto, &p), E_NOINTERFACE);
  EXPECT_EQ(p, nullptr);
  EXPECT_EQ(a->Release(), 2u);
  EXPECT_EQ(a->Release(), 1u);
  EXPECT_EQ(a->Release(), 0u);
}

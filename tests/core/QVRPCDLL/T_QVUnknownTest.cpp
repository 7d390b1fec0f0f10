// The call frame, over both classes and both ways of reaching an object: in
// this process, and through a server process over the transport. The same
// tests run on every combination and look only at what a client can see
// (statuses, records, the statistics function, the error log) and at what
// the stand-in servers report through shared memory.
#include "core/QVRPCDLL/T_QVUnknown.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>

#include "df/qvlibex/QVException.h"
#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"
#include "ge/zelkorin/CQVGE_Atendimento.h"
#include "ge/zelkorin/CQVGE_Projeto.h"
#include "platform/QVTaskMem.h"
#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"

namespace {

// What the stand-in server does when its business method is called.
enum class EAcao : std::int32_t {
  Ok,
  Codigo,            // returns the configured status
  Lanca,             // throws an exception object by pointer
  LancaDescarte,     // throws an exception carrying a discard status
  EscritaInvalida,   // writes where it may not
  Recursao,          // overflows its stack
  ParametroInvalido, // raises the runtime's invalid-parameter event
  FalhaConstrucao,   // its construction throws
};

// What one stand-in server saw, wherever it ran.
struct Observacao {
  std::atomic<std::int32_t> chamadas;
  std::atomic<bool> acessoDefaultEraOServidor;
  std::atomic<bool> acessoDefaultNuloAoCriar;
  std::atomic<bool> destruido;
  std::atomic<std::uint32_t> codigoSEH;  // the process's last, when it was destroyed
  std::atomic<bool> temPilhaSEH;
};

constexpr int kObservacoes = 64;
struct Compartilhado {
  std::atomic<std::int32_t> proximo;  // the next object's observation slot
  std::atomic<EAcao> acao;           // for the next object
  std::atomic<HRESULT> hr;
  Observacao obs[kObservacoes];
};
Compartilhado& Memoria() { return QVTesteCompartilhado<Compartilhado>("frame"); }

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

template <class Base>
class CServidorFalso : public Base {
 public:
  CServidorFalso(Observacao* obs, EAcao acao, HRESULT hr) : m_pObs(obs), m_Acao(acao), m_hr(hr) {
    m_pObs->acessoDefaultNuloAoCriar = CQVBaseParaRotinas::GetAcessoDefault() == nullptr;
  }
  ~CServidorFalso() override {
    m_pObs->codigoSEH = QVUltimoCodigoSEH();
    m_pObs->temPilhaSEH = !QVUltimaPilhaSEH().empty();
    m_pObs->destruido = true;
  }

  HRESULT Executa() {
    ++m_pObs->chamadas;
    m_pObs->acessoDefaultEraOServidor = CQVBaseParaRotinas::GetAcessoDefault() == this;
    switch (m_Acao) {
      case EAcao::Codigo: return m_hr;
      case EAcao::Lanca: throw new CQVException(1, 0, 5);
      case EAcao::LancaDescarte: throw CQVExceptionEx(QVHr(0x8004EAC5u), 0, 0, "x");
      case EAcao::EscritaInvalida: EscritaInvalida(); return S_OK;
      case EAcao::Recursao: return static_cast<HRESULT>(Recursao(nullptr, 0));
      case EAcao::ParametroInvalido: QVParametroInvalido("p != nullptr", "Rotina", "arquivo.cpp", 10); return S_OK;
      default: return S_OK;
    }
  }

 private:
  Observacao* m_pObs;
  EAcao m_Acao;
  HRESULT m_hr;
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

// The class object of a class whose objects get a stand-in server, doing
// what the shared memory says for the next object.
template <class Classe, class Falso>
auto FabricaFalsa() {
  return TQVFabricaDeClasse([] {
    Compartilhado& m = Memoria();
    Observacao* obs = &m.obs[m.proximo.fetch_add(1) % kObservacoes];
    obs->chamadas = 0;
    obs->acessoDefaultEraOServidor = obs->acessoDefaultNuloAoCriar = obs->destruido = obs->temPilhaSEH = false;
    obs->codigoSEH = 0;
    const EAcao acao = m.acao;
    const HRESULT hr = m.hr;
    return new Classe([obs, acao, hr]() -> std::unique_ptr<Falso> {
      if (acao == EAcao::FalhaConstrucao) throw std::bad_alloc();
      return std::make_unique<Falso>(obs, acao, hr);
    });
  });
}

auto g_fabricaAtendimento = FabricaFalsa<CQVGE_Atendimento, CServidorAtendimentoFalso>();
auto g_fabricaProjeto = FabricaFalsa<CQVGE_Projeto, CServidorProjetoFalso>();
std::uint32_t g_cookies[2];

void RegistraFabricasFalsas() {
  ASSERT_EQ(CoRegisterClassObject(CLSID_QVGE_Atendimento, &g_fabricaAtendimento, &g_cookies[0]), S_OK);
  ASSERT_EQ(CoRegisterClassObject(CLSID_QVGE_Projeto, &g_fabricaProjeto, &g_cookies[1]), S_OK);
}
QV_TESTE_PERSONALIDADE("frame", RegistraFabricasFalsas);

// The objects live in this process.
struct NoProcesso {
  static void Prepara() { RegistraFabricasFalsas(); }
  static void Encerra() {
    for (std::uint32_t c : g_cookies) EXPECT_EQ(CoRevokeClassObject(c), S_OK);
  }
};

// The objects live in a server process; CoCreateInstance reaches it
// through the classes the connection registers.
struct NoServidor {
  static inline std::unique_ptr<CQVServidorTeste> s_servidor;
  static inline std::shared_ptr<CQVConexaoZelkorin> s_conexao;
  static void Prepara() {
    s_servidor = std::make_unique<CQVServidorTeste>("frame");
    ASSERT_TRUE(s_servidor->Pronto()) << s_servidor->Processo().Erros();
    ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = s_servidor->Socket()}, &s_conexao), S_OK);
    ASSERT_EQ(s_conexao->RegistraClasses(), S_OK);
  }
  static void Encerra() {
    s_conexao.reset();
    const int status = s_servidor->Processo().Termina(SIGTERM);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << s_servidor->Processo().Erros();
    s_servidor.reset();
  }
};

struct Atendimento {
  using Interface = IQVGE_Atendimento;
  static constexpr const CLSID& kClsid = CLSID_QVGE_Atendimento;
  static constexpr const IID& kIid = IID_IQVGE_Atendimento;
  static constexpr const IID& kOutraIid = IID_IQVGE_Projeto;
  static constexpr const char* kMetodo = "CQVGE_Atendimento::LeAtendimento";
  static constexpr const char* kFrame = "T_QVUnknown<struct IQVGE_Atendimento,class CGeServidorAtendimento>";
  static HRESULT Negocio(Interface* o) {
    _REG_ATENDIMENTO_PS reg{};
    const HRESULT hr = o->LeAtendimento(1, 1, &reg);
    QVLibera(&reg);
    return hr;
  }
};

struct Projeto {
  using Interface = IQVGE_Projeto;
  static constexpr const CLSID& kClsid = CLSID_QVGE_Projeto;
  static constexpr const IID& kIid = IID_IQVGE_Projeto;
  static constexpr const IID& kOutraIid = IID_IQVGE_Atendimento;
  static constexpr const char* kMetodo = "CQVGE_Projeto::LeRegistro";
  static constexpr const char* kFrame = "T_QVUnknown<struct IQVGE_Projeto,class CGeProjetoBase>";
  static HRESULT Negocio(Interface* o) {
    _REG_PROJETO_ATENDIMENTO_PS reg{};
    const HRESULT hr = o->LeRegistro(1, &reg);
    QVLibera(&reg);
    return hr;
  }
};

template <class C, class M>
struct Caso {
  using Classe = C;
  using Modo = M;
};

// An object of the case's class whose server does `acao`, released at the end.
template <class T>
struct Objeto {
  explicit Objeto(EAcao acao = EAcao::Ok, HRESULT hr = S_OK) {
    Memoria().acao = acao;
    Memoria().hr = hr;
    slot = Memoria().proximo.load() % kObservacoes;
    EXPECT_EQ(CoCreateInstance(T::Classe::kClsid, nullptr, CLSCTX_ALL, T::Classe::kIid, p.ppv()), S_OK);
  }
  typename T::Classe::Interface* operator->() const { return p.get(); }
  HRESULT Negocio() { return T::Classe::Negocio(p.get()); }
  HRESULT Inicializa() { return p->Inicializa_Padrao(QVTesteInicializaPS()); }
  const Observacao& obs() const { return Memoria().obs[slot]; }

  // The statistics function's JSON, or null when it failed.
  nlohmann::json Estatisticas() {
    _REG_DF_FUNCAO_GENERICAPS entrada{};
    _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
    if (FAILED(p->FuncaoGenerica(QV_FUNCAO_GENERICA_ESTATISTICAS_USO, entrada, &saida)) || saida == nullptr)
      return nullptr;
    auto j = nlohmann::json::parse(reinterpret_cast<char*>(saida->pListaBytes));
    QVLibera(saida);
    CoTaskMemFree(saida);
    return j;
  }

  int slot;
  CQVComPtr<typename T::Classe::Interface> p;
};

std::size_t LinhasCom(const std::string& trecho) {
  std::size_t n = 0;
  for (const std::string& l : QVTesteLinhasErro()) n += l.find(trecho) != std::string::npos;
  return n;
}

// The cells of the object's statistics for one company: (class, method) ->
// code -> cell.
nlohmann::json CelulasDoDia(const nlohmann::json& j, const char* secao = "objeto") {
  return j[secao]["EMPRESA_TESTE"][QVDiaTexto(QVHoje())];
}

template <class T>
class FrameTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { T::Modo::Prepara(); }
  static void TearDownTestSuite() { T::Modo::Encerra(); }
  void SetUp() override { QVTesteLimpaLog(); }
};

using Casos = ::testing::Types<Caso<Atendimento, NoProcesso>, Caso<Projeto, NoProcesso>,
                               Caso<Atendimento, NoServidor>, Caso<Projeto, NoServidor>>;
TYPED_TEST_SUITE(FrameTest, Casos);

}  // namespace

TYPED_TEST(FrameTest, ObjetoNovoNaoExecutaNegocioNemRegistraNada) {
  Objeto<TypeParam> o;
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  EXPECT_EQ(o.obs().chamadas, 0);
  _REG_DF_ERROPS erro;
  std::memset(&erro, 0xAB, sizeof erro);
  EXPECT_EQ(o->GetUltimoErro(&erro), S_OK);
  const _REG_DF_ERROPS zero{};
  EXPECT_EQ(std::memcmp(&erro, &zero, sizeof erro), 0);
  EXPECT_TRUE(o.Estatisticas().is_null());  // a business call too
  EXPECT_TRUE(QVTesteLinhasErro().empty());
  // It is what it was made as, and nothing else.
  CQVComPtr<IQVUnknown> base;
  EXPECT_EQ(o->QueryInterface(IID_IQVUnknown, base.ppv()), S_OK);
  void* outra = reinterpret_cast<void*>(1);
  EXPECT_EQ(o->QueryInterface(TypeParam::Classe::kOutraIid, &outra), E_NOINTERFACE);
  EXPECT_EQ(outra, nullptr);
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
  // Only the initialisation was counted (the statistics call counts after
  // its answer is made).
  std::size_t celulas = 0;
  const nlohmann::json dia = CelulasDoDia(o.Estatisticas());
  for (const auto& [classe, metodos] : dia.items()) celulas += metodos.size();
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
  // All under the frame's one spelling of the routine's name.
  EXPECT_EQ(LinhasCom(std::string("\t") + TypeParam::Classe::kFrame + "::Inicializa_Padrao\t"), 7u);

  // None of these reached the server.
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  ASSERT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), S_OK);
}

TYPED_TEST(FrameTest, InicializacaoRecusadaPelaSessaoDeixaOObjetoUtilizavel) {
  Objeto<TypeParam> o;
  // A company that cannot be a folder: the session refuses it.
  EXPECT_EQ(o->Inicializa_Padrao(QVTesteInicializaPS("..")), QVHr(0x80040932u));
  EXPECT_FALSE(o.obs().destruido);
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  EXPECT_EQ(LinhasCom("hr = pfInSEHFuncao()\t"), 1u);
  // A second initialisation goes through every step again.
  EXPECT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), S_OK);
}

TYPED_TEST(FrameTest, FalhasDoServidorLogadasContadasEDescarteSoAposFalhaDeProcessador) {
  const struct {
    const char* caso;
    EAcao acao;
    HRESULT hr;  // the one the server returns, for EAcao::Codigo
    HRESULT esperado;
    bool descarta;
    std::uint32_t codigoSEH;  // the processor's, when there was a fault
    const char* linha;
  } kCasos[] = {
      {"código de descarte", EAcao::Codigo, QVHr(0x8004EAC5u), QVHr(0x8004EAC5u), true, 0,
       "hr = pfInSEHFuncao()\thr = 0X8004EAC5"},
      {"falha comum", EAcao::Codigo, E_QVCR_ARQUIVO_NAO_EXISTE, E_QVCR_ARQUIVO_NAO_EXISTE, false, 0,
       "hr = pfInSEHFuncao()\thr = 0X810809E3"},
      {"exceção", EAcao::Lanca, S_OK, QVHr(0x80040005u), false, 0, "hr = QVTranslateThrownExceptionToHresult()\t"},
      // Only a normal return with a structured-exception status discards.
      {"exceção com código de descarte", EAcao::LancaDescarte, S_OK, QVHr(0x8004EAC5u), false, 0,
       "hr = QVTranslateThrownExceptionToHresult()\t"},
      {"escrita inválida", EAcao::EscritaInvalida, S_OK, QVHr(0x8004EAC5u), true, 0xC0000005u,
       "hr = pfInSEHFuncao()\thr = 0X8004EAC5"},
      // (The next cases show that the thread's stack is whole again.)
      {"estouro de pilha", EAcao::Recursao, S_OK, QVHr(0x8004EADAu), true, 0xC00000FDu,
       "hr = pfInSEHFuncao()\thr = 0X8004EADA"},
      {"parâmetro inválido", EAcao::ParametroInvalido, S_OK, E_INVALIDARG, false, 0,
       "hr = QVTranslateThrownExceptionToHresult()\t"},
  };
  for (const auto& c : kCasos) {
    SCOPED_TRACE(c.caso);
    QVTesteLimpaLog();
    Objeto<TypeParam> o(c.acao, c.hr);
    ASSERT_EQ(o.Inicializa(), S_OK);
    EXPECT_EQ(o.Negocio(), c.esperado);
    EXPECT_EQ(o.obs().destruido, c.descarta);
    EXPECT_EQ(LinhasCom(std::string("\t") + TypeParam::Classe::kMetodo + "\t"), 1u);
    EXPECT_EQ(LinhasCom("\tcore/QVRPCDLL/T_QVUnknown\t"), 1u);
    EXPECT_EQ(LinhasCom(c.linha), 1u);
    if (c.codigoSEH != 0) {
      EXPECT_EQ(o.obs().codigoSEH, c.codigoSEH);
      EXPECT_TRUE(o.obs().temPilhaSEH);
    }
    _REG_DF_ERROPS erro;
    if (c.descarta) {
      EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
      EXPECT_EQ(o.Inicializa(), QVHr(0x81080AA8u));
      ASSERT_EQ(o->GetUltimoErro(&erro), S_OK);
      EXPECT_EQ(erro.hr, 0);  // no server, no error to copy
      EXPECT_EQ(o.obs().chamadas, 1);
      continue;
    }
    // The call counted, the server is still there, and the last error
    // explains the failure.
    std::string classe, metodo;
    QVSeparaNomeMetodo(TypeParam::Classe::kMetodo, &classe, &metodo);
    EXPECT_EQ(CelulasDoDia(o.Estatisticas())[classe][metodo]["9"]["chamadas"], 1);
    EXPECT_EQ(o.Negocio(), c.esperado);
    EXPECT_EQ(o.obs().chamadas, 2);
    ASSERT_EQ(o->GetUltimoErro(&erro), S_OK);
    EXPECT_EQ(erro.hr, c.esperado);
    EXPECT_EQ(erro.usNumeroServidor, 9);
    EXPECT_STREQ(erro.szEmpresa, "EMPRESA_TESTE");
    EXPECT_GT(std::strlen(erro.cMensagem), 0u);
  }
}

TYPED_TEST(FrameTest, AcessoDefaultSoDuranteAChamada) {
  Objeto<TypeParam> o;
  ASSERT_EQ(o.Inicializa(), S_OK);
  ASSERT_EQ(o.Negocio(), S_OK);
  EXPECT_TRUE(o.obs().acessoDefaultEraOServidor);
  Objeto<TypeParam> lanca(EAcao::Lanca);
  ASSERT_EQ(lanca.Inicializa(), S_OK);
  ASSERT_EQ(lanca.Negocio(), QVHr(0x80040005u));
  // Neither call left it behind (not even the one that threw): the next
  // object is made with none set.
  Objeto<TypeParam> depois;
  EXPECT_TRUE(depois.obs().acessoDefaultNuloAoCriar);
}

TYPED_TEST(FrameTest, FalhaNaConstrucaoDoServidor) {
  Objeto<TypeParam> o(EAcao::FalhaConstrucao);
  ASSERT_TRUE(o.p);  // the object exists, without a server
  // One line, under the frame's name (the exception's translation is not
  // logged apart).
  ASSERT_EQ(QVTesteLinhasErro().size(), 1u);
  EXPECT_EQ(LinhasCom(std::string("\t") + TypeParam::Classe::kFrame + "::T_QVUnknown\t"), 1u);
  EXPECT_EQ(LinhasCom("hr = m_hrConstruct\t"), 1u);
  EXPECT_EQ(o.Negocio(), QVHr(0x81080A04u));
  EXPECT_EQ(o.Inicializa(), QVHr(0x81080AA8u));
  std::int32_t ok = 0;
  EXPECT_EQ(o->KeepAlive(&ok), S_OK);
  EXPECT_EQ(ok, 1);
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
  QVLibera(saida);
  CoTaskMemFree(saida);
  std::string classe, metodo;
  QVSeparaNomeMetodo(TypeParam::Classe::kMetodo, &classe, &metodo);
  const nlohmann::json celula = CelulasDoDia(j)[classe][metodo]["9"];
  EXPECT_EQ(celula["chamadas"], 3);
  EXPECT_LE(celula["menorMs"].get<std::uint64_t>(), celula["maiorMs"].get<std::uint64_t>());
  EXPECT_GE(CelulasDoDia(j, "processo")[classe][metodo]["9"]["chamadas"].get<int>(), 3);
  EXPECT_GE(j["servidor"]["objetosAtivos"].get<int>(), 1);

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

TEST(QVFrame, SemServidorAsEstatisticasFicamSobAEmpresaVazia) {
  auto* o = new CQVGE_Atendimento([]() -> std::unique_ptr<CGeServidorAtendimento> { return nullptr; });
  EXPECT_EQ(o->GetHrConstruct(), E_OUTOFMEMORY);
  // The record names a company, but no server says which it serves.
  EXPECT_EQ(o->Inicializa_Padrao(QVTesteInicializaPS()), QVHr(0x81080AA8u));
  const QVMapaEstatisticas& estatisticas = o->GetEstatisticas();
  ASSERT_EQ(estatisticas.size(), 1u);
  EXPECT_EQ(estatisticas.begin()->first, "");
  o->Release();
}

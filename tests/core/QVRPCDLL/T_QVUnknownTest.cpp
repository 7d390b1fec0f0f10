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
    Observacao* obs = std::construct_at(&m.obs[m.proximo.fetch_add(1) % kObservacoes]);
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

// Each class, with the business method its stand-in server implements.
struct Atendimento {
  using Interface = IQVGE_Atendimento;
  using Negocio = QVMetodo<IQVGE_Atendimento, 11>;  // LeAtendimento
  static constexpr const CLSID& kClsid = CLSID_QVGE_Atendimento;
  static constexpr const char* kClasse = "CQVGE_Atendimento";
  static constexpr const char* kFrame = "T_QVUnknown<struct IQVGE_Atendimento,class CGeServidorAtendimento>";
};
struct Projeto {
  using Interface = IQVGE_Projeto;
  using Negocio = QVMetodo<IQVGE_Projeto, 9>;  // LeRegistro
  static constexpr const CLSID& kClsid = CLSID_QVGE_Projeto;
  static constexpr const char* kClasse = "CQVGE_Projeto";
  static constexpr const char* kFrame = "T_QVUnknown<struct IQVGE_Projeto,class CGeProjetoBase>";
};

template <class C, class M>
struct Caso {
  using Classe = C;
  using Modo = M;
};

// The cells of the statistics for the test's company today: class ->
// method -> code -> cell.
nlohmann::json CelulasDoDia(nlohmann::json j, const char* secao = "objeto") {
  return j[secao]["EMPRESA_TESTE"][QVDiaTexto(QVHoje())];
}

// An object of the case's class whose server does `acao`, released at the end.
template <class T>
struct Objeto {
  using C = typename T::Classe;
  explicit Objeto(EAcao acao = EAcao::Ok, HRESULT hr = S_OK) {
    Memoria().acao = acao;
    Memoria().hr = hr;
    slot = Memoria().proximo.load() % kObservacoes;
    EXPECT_EQ(CoCreateInstance(C::kClsid, nullptr, CLSCTX_ALL, QVInterface<typename C::Interface>::kIid, p.ppv()),
              S_OK);
  }
  typename C::Interface* operator->() const { return p.get(); }
  HRESULT Negocio() {
    CQVValoresChamada<typename C::Negocio> v;
    return v.Chama(p.get());
  }
  HRESULT Inicializa() { return p->Inicializa_Padrao(QVTesteInicializaPS()); }
  const Observacao& obs() const { return Memoria().obs[slot]; }

  // The statistics function's JSON (its length counts the terminating
  // zero), or null when it failed.
  nlohmann::json Estatisticas() {
    _REG_DF_FUNCAO_GENERICAPS entrada{};
    _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
    if (FAILED(p->FuncaoGenerica(QV_FUNCAO_GENERICA_ESTATISTICAS_USO, entrada, &saida)) || saida == nullptr)
      return nullptr;
    const char* texto = reinterpret_cast<char*>(saida->pListaBytes);
    EXPECT_EQ(saida->ulQtdBytes, std::strlen(texto) + 1);
    auto j = nlohmann::json::parse(texto);
    QVLibera(saida);
    CoTaskMemFree(saida);
    return j;
  }
  // The business method's cell, under the name the log gives it.
  static nlohmann::json Celula(nlohmann::json j, const char* secao = "objeto") {
    return CelulasDoDia(j, secao)[C::kClasse][std::string(C::Negocio::kNome)]["9"];
  }
  static std::string NomeNegocio() { return std::string(C::kClasse) + "::" + std::string(C::Negocio::kNome); }

  int slot;
  CQVComPtr<typename C::Interface> p;
};

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

// A new object, and one whose server could not be made, run no business:
// nothing reaches a server, is logged or counted; KeepAlive and
// GetUltimoErro answer all the same.
TYPED_TEST(FrameTest, SemServidorOuSemInicializacaoNadaExecuta) {
  Objeto<TypeParam> novo;
  EXPECT_TRUE(QVTesteLinhasErro().empty());
  Objeto<TypeParam> semServidor(EAcao::FalhaConstrucao);
  ASSERT_TRUE(semServidor.p);
  // One line, under the frame's name (the exception's translation is not
  // logged apart).
  ASSERT_EQ(QVTesteLinhasErro().size(), 1u);
  EXPECT_EQ(QVTesteLinhasCom(std::string("\t") + TypeParam::Classe::kFrame + "::T_QVUnknown\t"), 1u);
  EXPECT_EQ(QVTesteLinhasCom("hr = m_hrConstruct\t"), 1u);
  for (Objeto<TypeParam>* o : {&novo, &semServidor}) {
    EXPECT_EQ(o->Negocio(), QVHr(0x81080A04u));
    _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;  // a business call too
    EXPECT_EQ((*o)->FuncaoGenerica(QV_FUNCAO_GENERICA_ESTATISTICAS_USO, {}, &saida), QVHr(0x81080A04u));
    EXPECT_EQ(saida, nullptr);
    _REG_DF_ERROPS erro;
    std::memset(&erro, 0xAB, sizeof erro);
    EXPECT_EQ((*o)->GetUltimoErro(&erro), S_OK);
    const _REG_DF_ERROPS zero{};
    EXPECT_EQ(std::memcmp(&erro, &zero, sizeof erro), 0);
    std::int32_t ok = 0;
    EXPECT_EQ((*o)->KeepAlive(&ok), S_OK);
    EXPECT_EQ(ok, 1);
  }
  EXPECT_EQ(novo.obs().chamadas, 0);
  EXPECT_EQ(QVTesteLinhasErro().size(), 1u);
  EXPECT_EQ(semServidor.Inicializa(), QVHr(0x81080AA8u));
  // It is what it was made as, and nothing else.
  CQVComPtr<IQVUnknown> base;
  EXPECT_EQ(novo->QueryInterface(IID_IQVUnknown, base.ppv()), S_OK);
  void* outra = reinterpret_cast<void*>(1);
  const bool atendimento = std::is_same_v<typename TypeParam::Classe, Atendimento>;
  EXPECT_EQ(novo->QueryInterface(atendimento ? IID_IQVGE_Projeto : IID_IQVGE_Atendimento, &outra), E_NOINTERFACE);
  EXPECT_EQ(outra, nullptr);
}

// Each refusal is logged once, with its code, under the frame's one
// spelling of the routine's name; none reaches the server.
TYPED_TEST(FrameTest, VerificacoesDoRegistroDeInicializacaoNaOrdem) {
  using R = _REG_DF_INICIALIZAPS;
  const HRESULT kEstrutura = QVHr(0x81080C19u);
  const struct {
    void (*muda)(R&);
    HRESULT hr;
    const char* codigo;
  } kCasos[] = {
      // The CRC is now wrong too: the version is looked at first.
      {[](R& r) { r.usVersaoVireo = 117; }, QVHr(0x81080BFDu), "E_QVCR_VERSAO_INCOMPATIVEL"},
      {[](R& r) { r.szEmpresa[3] ^= 1; }, QVHr(0x81080C17u), "E_QVCR_CRC_INICIALIZACAO_INVALIDO"},  // of the first 288
      // From here on the CRC is made right again.
      {[](R& r) { r.cControle = 'A'; }, kEstrutura, "E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA"},
      {[](R& r) { r.szAplicativo[0] = 0; }, kEstrutura, "E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA"},
      {[](R& r) { r.szModuleName[0] = 0; }, kEstrutura, "E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA"},
      {[](R& r) { r.szArquivoFonte[0] = 0; }, kEstrutura, "E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA"},
      {[](R& r) { r.ulLinhaFonte = 0; }, kEstrutura, "E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA"},
  };
  Objeto<TypeParam> o;
  for (const auto& c : kCasos) {
    SCOPED_TRACE(c.codigo);
    QVTesteLimpaLog();
    R reg = QVTesteInicializaPS();
    c.muda(reg);
    if (c.hr == kEstrutura) reg.uiCRC = QVCrcInicializaPS(reg);
    EXPECT_EQ(o->Inicializa_Padrao(reg), c.hr);
    EXPECT_EQ(QVTesteLinhasCom(std::string("hr = ") + c.codigo + "\t"), 1u);
    EXPECT_EQ(QVTesteLinhasCom(std::string("\t") + TypeParam::Classe::kFrame + "::Inicializa_Padrao\t"), 1u);
  }
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
  EXPECT_EQ(QVTesteLinhasCom("hr = pfInSEHFuncao()\t"), 1u);
  // A second initialisation goes through every step again.
  EXPECT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Inicializa(), S_OK);
  EXPECT_EQ(o.Negocio(), S_OK);
}

// Also: the server's session is the default access during its call only;
// no call leaves it set, not even one that threw or faulted.
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
    EXPECT_TRUE(o.obs().acessoDefaultNuloAoCriar);
    EXPECT_EQ(o.Negocio(), c.esperado);
    EXPECT_TRUE(o.obs().acessoDefaultEraOServidor);
    EXPECT_EQ(o.obs().destruido, c.descarta);
    EXPECT_EQ(QVTesteLinhasCom("\t" + o.NomeNegocio() + "\t"), 1u);
    EXPECT_EQ(QVTesteLinhasCom("\tcore/QVRPCDLL/T_QVUnknown\t"), 1u);
    EXPECT_EQ(QVTesteLinhasCom(c.linha), 1u);
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
    EXPECT_EQ(o.Celula(o.Estatisticas())["chamadas"], 1);
    EXPECT_EQ(o.Negocio(), c.esperado);
    EXPECT_EQ(o.obs().chamadas, 2);
    ASSERT_EQ(o->GetUltimoErro(&erro), S_OK);
    EXPECT_EQ(erro.hr, c.esperado);
    EXPECT_EQ(erro.usNumeroServidor, 9);
    EXPECT_STREQ(erro.szEmpresa, "EMPRESA_TESTE");
    EXPECT_GT(std::strlen(erro.cMensagem), 0u);
  }
}

TYPED_TEST(FrameTest, EstatisticasPelaFuncaoGenerica) {
  Objeto<TypeParam> o;
  ASSERT_EQ(o.Inicializa(), S_OK);
  std::int32_t ok = 0;
  _REG_DF_ERROPS erro;
  ASSERT_EQ(o->KeepAlive(&ok), S_OK);
  ASSERT_EQ(o->GetUltimoErro(&erro), S_OK);
  for (int i = 0; i < 3; ++i) ASSERT_EQ(o.Negocio(), S_OK);
  EXPECT_TRUE(o.obs().acessoDefaultEraOServidor);
  EXPECT_TRUE(Objeto<TypeParam>().obs().acessoDefaultNuloAoCriar);  // a call that succeeded cleared it too
  const nlohmann::json j = o.Estatisticas();
  ASSERT_FALSE(j.is_null());
  nlohmann::json celula = o.Celula(j);
  EXPECT_EQ(celula["chamadas"], 3);
  EXPECT_LE(celula["menorMs"], celula["maiorMs"]);
  EXPECT_GE(o.Celula(j, "processo")["chamadas"], 3);
  EXPECT_GE(j["servidor"]["objetosAtivos"].get<int>(), 1);
  // Besides, only the initialisation, under the frame's routine name
  // (KeepAlive and GetUltimoErro are not counted; the statistics call
  // counts after its answer is made).
  nlohmann::json dia = CelulasDoDia(j);
  EXPECT_EQ(dia["T_QVUnknown"]["Inicializa_Padrao"]["9"]["chamadas"], 1);
  std::size_t celulas = 0;
  for (const auto& [classe, metodos] : dia.items()) celulas += metodos.size();
  EXPECT_EQ(celulas, 2u);

  // Other numbers go to the server's generic function.
  _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
  EXPECT_EQ(o->FuncaoGenerica(1, _REG_DF_FUNCAO_GENERICAPS{}, &saida), E_NOTIMPL);
  EXPECT_EQ(saida, nullptr);
}

TEST(QVFrame, NomesDosMetodosNasEstatisticas) {
  // The method is cut at its next ':' (the class at its '<': see the
  // statistics above).
  std::string classe, metodo;
  QVSeparaNomeMetodo("A::B::C", &classe, &metodo);
  EXPECT_EQ(classe + "|" + metodo, "A|B");
}

TEST(QVFrame, CelulaGuardaAMenorEAMaiorDuracao) {
  QVCelulaEstatistica c;
  for (const std::uint64_t ms : {7u, 3u, 5u}) c.Adiciona(ms);
  EXPECT_EQ((std::vector<std::uint64_t>{c.ulChamadas, c.ulTotalMs, c.ulMaiorMs, c.ulMenorMs}),
            (std::vector<std::uint64_t>{3, 15, 7, 3}));
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

// The process's index of call numbers behind the numbering rule: it gives
// what reading every month would give, reads no month whose file did not
// change, and sees what another process wrote, appended or in place.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>

#include "df/qvlibex/QVDatas.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/atendimento/CQVIndiceNumeros.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteRegistros.h"

namespace {

struct Servidor {
  CGeServidorAtendimento s;
  HRESULT hr;
  explicit Servidor(const std::string& empresa) : hr(s.Inicializa(QVTesteInicializaPS(empresa))) {}

  // Saves an empty call asking for a number: where it went and the number
  // it got (0, 0 on failure).
  std::pair<std::uint32_t, std::uint32_t> Grava(std::uint16_t iMA, std::uint32_t lPosicao, std::uint32_t lNumero) {
    _REG_ATENDIMENTO_PS a = Zerado<_REG_ATENDIMENTO_PS>();
    a.lNumeroAtendimento = lNumero;
    std::uint32_t lGravada = 0;
    CQVRegistroPs<_REG_ATENDIMENTO_PS> lido;
    if (FAILED(s.GravaAtendimento(iMA, lPosicao, a, &lGravada)) ||
        FAILED(s.LeAtendimentoLight(iMA, lGravada, &lido.reg)))
      return {0, 0};
    return {lGravada, lido.reg.lNumeroAtendimento};
  }
  std::int32_t Livre(std::uint32_t lNumero) {
    std::int32_t b = -1;
    EXPECT_EQ(s.ConsistirNumeroAtendimentoPS(lNumero, &b), S_OK);
    return b;
  }
};

// The call files' time of change an hour back: states seen now are long
// after their change, and trusted.
void Envelhece(const std::string& sDir) {
  for (const auto& e : std::filesystem::directory_iterator(sDir))
    if (e.path().filename().string().rfind("GEATTEC2", 0) == 0)
      std::filesystem::last_write_time(e.path(), std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
}

}  // namespace

// Saves in three months, new calls and rewrites, asking for numbers that
// clash: each number is the one the rule gives over every other call.
TEST(IndiceNumeros, DaOQueLerTodosOsMesesDaria) {
  Servidor srv("INDICE ALEATORIO");
  ASSERT_EQ(srv.hr, S_OK);
  const std::uint16_t jan = QVMesAno(2024, 1);
  std::map<std::pair<std::uint16_t, std::uint32_t>, std::uint32_t> chamados;  // (month, position) -> number
  std::mt19937 gerador(7);
  for (int i = 0; i < 40; ++i) {
    const std::uint16_t iMA = jan + gerador() % 3;
    std::uint32_t lPosicao = 0;
    if (gerador() % 3 == 0) {
      const auto it = chamados.lower_bound({iMA, 0});
      if (it != chamados.end() && it->first.first == iMA) lPosicao = it->first.second;
    }
    const std::uint32_t lPedido = gerador() % 16;
    std::set<std::uint32_t> outros;
    for (const auto& [onde, n] : chamados)
      if (onde != std::pair{iMA, lPosicao}) outros.insert(n);
    std::uint32_t lEsperado = lPedido;
    while (lEsperado == 0 || outros.count(lEsperado) != 0) ++lEsperado;
    const auto [lGravada, lNumero] = srv.Grava(iMA, lPosicao, lPedido);
    ASSERT_NE(lGravada, 0u);
    EXPECT_EQ(lNumero, lEsperado) << "passo " << i << ", pedido " << lPedido;
    chamados[{iMA, lGravada}] = lNumero;
  }
}

// 5 asked with 5, 6 and 9 taken gives 7, a call keeps its own number, and
// an unchanged month is not read again. Another process rewrites a call in
// place and appends one: the next answers here see both.
TEST(IndiceNumeros, OutroProcessoEMesesQueNaoMudaram) {
  const std::string empresa = "INDICE PROCESSOS";
  const std::uint16_t jan = QVMesAno(2024, 1), fev = jan + 1;
  auto srv = std::make_unique<Servidor>(empresa);
  ASSERT_EQ(srv->hr, S_OK);
  const std::string sDir = srv->s.GetDiretorioDados();
  CQVIndiceNumeros& indice = CQVIndiceNumeros::Da(sDir);
  srv->Grava(jan, 0, 5);
  const std::uint32_t lPos6 = srv->Grava(jan, 0, 6).first;
  const std::uint32_t lPos9 = srv->Grava(fev, 0, 9).first;

  Envelhece(sDir);
  EXPECT_EQ(srv->Livre(5), 0);  // reads the months whose time moved
  const std::uint64_t uiLeituras = indice.GetQtdLeiturasMes();
  EXPECT_EQ(srv->Livre(7), 1);
  EXPECT_EQ(srv->Livre(9), 0);
  EXPECT_EQ(indice.GetQtdLeiturasMes(), uiLeituras);

  EXPECT_EQ(srv->Grava(jan, 0, 5).second, 7u);
  // The save's month, held since, is as the save left it: not read again.
  const std::uint64_t uiAposGravar = indice.GetQtdLeiturasMes();
  EXPECT_EQ(srv->Livre(7), 0);
  EXPECT_EQ(srv->Livre(8), 1);
  EXPECT_EQ(indice.GetQtdLeiturasMes(), uiAposGravar);
  {
    // A write of this process that does not come through a save, in
    // place: the held month's counters moved.
    auto* db = srv->s.GetDataBase();
    std::lock_guard trava(db->Trava());
    REG_ATENDIMENTO_V2 reg{};
    reg.lNumeroAtendimento = 8;
    QVUInt uiPosicao = lPos6;
    ASSERT_EQ(db->m_ArqAtendimento.Grava(uiPosicao, reg), S_OK);
  }
  EXPECT_EQ(srv->Livre(8), 0);
  EXPECT_EQ(srv->Livre(6), 1);
  EXPECT_EQ(srv->Grava(fev, lPos9, 9).second, 9u);
  EXPECT_EQ(srv->Grava(jan, 0, 0).second, 1u);

  // Trusted again, then this process lets the files go.
  Envelhece(sDir);
  EXPECT_EQ(srv->Livre(11), 1);
  auto estados = [&] {
    std::map<std::string, std::filesystem::file_time_type> m;
    for (const auto& e : std::filesystem::directory_iterator(sDir)) m[e.path().filename()] = e.last_write_time();
    return m;
  };
  const auto antes = estados();
  srv.reset();
  ASSERT_EQ(estados(), antes);  // letting go changes no file: what follows is the other process's
  const auto status = QVTesteEmProcessos(1, [&](int) {
    Servidor outro(empresa);
    if (FAILED(outro.hr)) return 1;
    if (outro.Grava(jan, lPos6, 11).second != 11) return 2;  // 8 becomes 11, in place
    if (outro.Grava(fev, 0, 20).second != 20) return 3;
    return 0;
  });
  ASSERT_EQ(status, std::vector<int>{0});

  srv = std::make_unique<Servidor>(empresa);
  ASSERT_EQ(srv->hr, S_OK);
  EXPECT_EQ(srv->Livre(8), 1);
  EXPECT_EQ(srv->Livre(11), 0);
  EXPECT_EQ(srv->Livre(20), 0);
  EXPECT_EQ(srv->Grava(jan, 0, 9).second, 10u);  // 9 taken, 10 free
  EXPECT_EQ(srv->Grava(fev, 0, 6).second, 6u);
}

// Writes that fail halfway: the file is left valid with what its callers
// were told was written, or it is refused at its next open. Never silently
// wrong.
#include <gtest/gtest.h>

#include <cstring>

#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVTextFile.h"
#include "df/qvlibex/QVCodigos.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVArquivoFalho.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

std::uint64_t ChaveCodigo(const REG_TESTE& r, QVUInt) { return r.lCodigo; }

class QVFalhasGravacaoTest : public ::testing::Test {
 protected:
  void SetUp() override { m_Dir = QVTesteNovoDiretorio("falhas"); }

  std::unique_ptr<CQVFile<REG_TESTE>> Registros() {
    auto a = std::make_unique<CQVFile<REG_TESTE>>("GEATRPS.dat", QV_GE,
                                                  std::initializer_list<CQVFile<REG_TESTE>::Indice>{
                                                      {&ChaveCodigo, false, false}});
    a->SetDiretorio(m_Dir);
    m_hr = a->Inicializa(&QVTesteIdentidade());
    return a;
  }
  std::unique_ptr<CQVTextFile> Textos() {
    auto a = std::make_unique<CQVTextFile>("GeAtDsDe.dat", QV_GE);
    a->SetDiretorio(m_Dir);
    m_hr = a->Inicializa(&QVTesteIdentidade());
    return a;
  }

  // What a reopened record file holds: its codes, or nothing when refused.
  std::vector<std::uint32_t> CodigosNoDisco(bool* pRecusado) {
    auto a = Registros();
    *pRecusado = FAILED(m_hr);
    std::vector<std::uint32_t> codigos;
    for (QVUInt p = 1; p <= a->GetQtdRegistros(); ++p) {
      REG_TESTE r;
      EXPECT_EQ(a->Le(p, &r), S_OK);
      codigos.push_back(r.lCodigo);
    }
    return codigos;
  }

  std::string m_Dir;
  HRESULT m_hr = S_OK;
};

}  // namespace

// Every way one write or one flush can fail, during an append and during a
// rewrite in place: the call fails with the disk's error, the file object
// goes on working, and the file on disk holds exactly the acknowledged
// records.
TEST_F(QVFalhasGravacaoTest, FalhaDeEscritaOuFlushEhDesfeita) {
  struct Caso {
    const char* nome;
    QVPlanoFalhas plano;
    QVUInt posicao;  // 0 append, 2 rewrite
  };
  const Caso casos[] = {
      {"escrita do append", {.iFalharEscrita = 1}, 0},
      {"escrita parcial do append", {.iFalharEscrita = 1, .bEscritaParcial = true}, 0},
      {"cabecalho do append", {.iFalharEscrita = 2}, 0},
      {"flush do append", {.iFalharFlush = 1}, 0},
      {"escrita parcial no lugar", {.iFalharEscrita = 1, .bEscritaParcial = true}, 2},
      {"flush no lugar", {.iFalharFlush = 1}, 2},
  };
  for (const Caso& caso : casos) {
    SetUp();
    {
      auto a = Registros();
      QVUInt pos = 0;
      ASSERT_EQ(a->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2), QVTesteRegistro(3)}), S_OK);
    }
    {
      CQVArquivoFalho falho(caso.plano);
      auto a = Registros();
      ASSERT_EQ(m_hr, S_OK) << caso.nome;
      QVUInt pos = caso.posicao;
      EXPECT_EQ(a->Grava(pos, QVTesteRegistro(99)), HRESULT_FROM_WIN32(ERROR_DISK_FULL)) << caso.nome;
      EXPECT_EQ(falho.Falhas(), 1) << caso.nome;
      EXPECT_EQ(a->GetEstadoDuvida(), S_OK) << caso.nome;
      REG_TESTE r;
      ASSERT_EQ(a->Le(2, &r), S_OK);
      EXPECT_EQ(r.lCodigo, 2u) << caso.nome;  // memory was not changed
      // The object goes on: the next write succeeds.
      pos = 0;
      EXPECT_EQ(a->Grava(pos, QVTesteRegistro(4)), S_OK) << caso.nome;
      EXPECT_EQ(pos, 4u) << caso.nome;
    }
    bool recusado = false;
    EXPECT_EQ(CodigosNoDisco(&recusado), (std::vector<std::uint32_t>{1, 2, 3, 4})) << caso.nome;
    EXPECT_FALSE(recusado) << caso.nome;
  }
}

// The disk keeps failing: the rollback fails too. The file refuses further
// writes and is refused at its next open, or still holds exactly the
// acknowledged records; it never reads back something else.
TEST_F(QVFalhasGravacaoTest, DiscoQueContinuaFalhandoDeixaOArquivoEmDuvida) {
  for (bool parcial : {false, true}) {
    SetUp();
    {
      auto a = Registros();
      QVUInt pos = 0;
      ASSERT_EQ(a->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2)}), S_OK);
    }
    {
      CQVArquivoFalho falho({.iFalharEscrita = 1, .iFalharTamanho = 1, .bEscritaParcial = parcial,
                             .bFalharDaiEmDiante = true});
      auto a = Registros();
      QVUInt pos = 0;
      EXPECT_EQ(a->Grava(pos, QVTesteRegistro(3)), HRESULT_FROM_WIN32(ERROR_DISK_FULL));
      EXPECT_EQ(a->GetEstadoDuvida(), HRESULT_FROM_WIN32(ERROR_DISK_FULL));
      pos = 0;
      EXPECT_EQ(a->Grava(pos, QVTesteRegistro(4)), HRESULT_FROM_WIN32(ERROR_DISK_FULL));
      EXPECT_EQ(a->Finaliza(), HRESULT_FROM_WIN32(ERROR_DISK_FULL));
    }
    bool recusado = false;
    const auto codigos = CodigosNoDisco(&recusado);
    if (parcial) {
      EXPECT_TRUE(recusado);  // half a record behind the header's length
      EXPECT_EQ(m_hr, E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE);
    } else {
      EXPECT_FALSE(recusado);
      EXPECT_EQ(codigos, (std::vector<std::uint32_t>{1, 2}));
    }
  }
}

TEST_F(QVFalhasGravacaoTest, CompactacaoQueFalhaVoltaAosTextosAntigos) {
  for (int escrita : {1, 2}) {  // the compacted texts, or the header after them
    SetUp();
    {
      auto a = Textos();
      QVUInt pos = 0;
      ASSERT_EQ(a->GravaColecao(pos, {"primeiro texto", "segundo", "terceiro"}), S_OK);
    }
    {
      CQVArquivoFalho falho({.iFalharEscrita = escrita, .bEscritaParcial = true});
      auto a = Textos();
      QVUInt pos = 1;
      EXPECT_EQ(a->Grava(pos, "curto"), HRESULT_FROM_WIN32(ERROR_DISK_FULL));
      std::string t;
      ASSERT_EQ(a->Le(1, &t), S_OK);
      EXPECT_EQ(t, "primeiro texto");
    }
    auto a = Textos();
    ASSERT_EQ(m_hr, S_OK);
    std::string t;
    ASSERT_EQ(a->Le(1, &t), S_OK);
    EXPECT_EQ(t, "primeiro texto");
    ASSERT_EQ(a->Le(3, &t), S_OK);
    EXPECT_EQ(t, "terceiro");
  }
}

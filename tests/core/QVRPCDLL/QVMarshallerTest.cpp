// Records carried between processes: round trips of every kind, the
// canonical bytes, and every refusal.
#include "core/QVRPCDLL/QVMarshaller.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/QVBstr.h"
#include "tests/support/QVTesteRegistros.h"
#include "tests/support/QVTiposRegistro.h"

namespace {

std::span<const std::uint8_t> Bytes(const std::string& s) {
  return {reinterpret_cast<const std::uint8_t*>(s.data()), s.size()};
}

}  // namespace

// Every kind, with everything it can own: what is received equals what was
// sent, with everything followed, and marshals into the same bytes again.
// Both sides are freed (the sanitizer build sees a leak or a shared buffer).
TEST(QVMarshaller, IdaEVoltaDeTodoTipoDeRegistro) {
  QVParaCadaRegistro([]<class T>() {
    SCOPED_TRACE(QVDescritor<T>().nome);
    T original = Amostra<T>(static_cast<std::uint32_t>(sizeof(T)));
    std::string fixo, anexos, fixo2, anexos2;
    QVMarshal(original, &fixo, &anexos);
    T recebido;
    ASSERT_EQ(QVUnmarshal(Bytes(fixo), Bytes(anexos), &recebido), S_OK);
    EXPECT_TRUE(QVIguais(original, recebido));
    QVMarshal(recebido, &fixo2, &anexos2);
    EXPECT_EQ(std::pair(fixo2, anexos2), std::pair(fixo, anexos));
    QVLibera(&original);
    QVLibera(&recebido);
  });
}

TEST(QVMarshaller, BytesCanonicos) {
  auto t = Zerado<_REG_DF_TEXTOPS>();
  ASSERT_EQ(QVTextoPsDefine(&t, "A"), S_OK);
  t.cFiller[1] = 7;  // fillers travel as they are
  std::string fixo, anexos;
  QVMarshal(t, &fixo, &anexos);
  EXPECT_EQ(fixo, std::string("\x02\x00\x00\x00\x00\x07\x00\x00", 8) + std::string(16, '\0'));  // pointers zeroed
  EXPECT_EQ(anexos, std::string("A\0", 2));
  QVLibera(&t);

  // A null pointer with a count travels as count 0; a system string as its
  // byte length and UTF-16 units.
  auto a = Zerado<_REG_AGENDAMENTO_REL>();
  a.bsExecutor = QVBstrFromUtf8("Jo");
  auto l = Zerado<_REG_LISTA_PONTEIROS_PS>();
  l.iQuantidadePonteiros = 5;
  QVMarshal(l, &fixo, &anexos);
  EXPECT_EQ(fixo, std::string(24, '\0'));
  EXPECT_EQ(anexos, "");
  QVMarshal(a, &fixo, &anexos);
  EXPECT_EQ(anexos, std::string("\x04\x00\x00\x00J\x00o\x00", 8) + std::string(12, '\0'));  // then 3 empty strings
  QVLibera(&a);
}

TEST(QVMarshaller, DadosRuinsSaoRecusadosSemVazar) {
  auto original = Amostra<_REG_ATENDIMENTO_PS>(1);
  std::string fixo, anexos;
  QVMarshal(original, &fixo, &anexos);
  QVLibera(&original);
  _REG_ATENDIMENTO_PS r;
  // A record of another size, either way.
  EXPECT_EQ(QVUnmarshal(Bytes(fixo.substr(1)), Bytes(anexos), &r), RPC_X_BAD_STUB_DATA);
  EXPECT_EQ(QVUnmarshal(Bytes(fixo + "x"), Bytes(anexos), &r), RPC_X_BAD_STUB_DATA);
  // Owned data cut at any point, or running on after the last field.
  for (std::size_t n = 0; n < anexos.size(); ++n)
    ASSERT_EQ(QVUnmarshal(Bytes(fixo), Bytes(anexos.substr(0, n)), &r), RPC_X_BAD_STUB_DATA) << n;
  EXPECT_EQ(QVUnmarshal(Bytes(fixo), Bytes(anexos + "x"), &r), RPC_X_BAD_STUB_DATA);
  EXPECT_EQ(r.pServicos, nullptr);  // a refused record owns nothing
  EXPECT_EQ(r.iQuantidadeServicoAtend, 0u);
  // More elements than the limit allow.
  EXPECT_EQ(QVUnmarshal(Bytes(fixo), Bytes(anexos), &r, QVLimitesMarshal{.ulMaxElementos = 2}), RPC_X_BAD_STUB_DATA);

  // A huge count behind a few bytes: refused before anything is allocated.
  auto filtro = Amostra<_REG_FILTRO_ATENDIMENTO_PS>(1);
  QVMarshal(filtro, &fixo, &anexos);
  QVLibera(&filtro);
  std::int32_t menosUm = -1;
  std::memcpy(fixo.data() + offsetof(_REG_FILTRO_ATENDIMENTO_PS, iQtdeMA), &menosUm, 4);
  _REG_FILTRO_ATENDIMENTO_PS f;
  EXPECT_EQ(QVUnmarshal(Bytes(fixo), Bytes(anexos), &f), RPC_X_BAD_STUB_DATA);

  // A text without its terminating zero; a system string of an odd length.
  auto t = Zerado<_REG_DF_TEXTOPS>();
  t.ulQtdBytes = 2;
  std::string fixoTexto(reinterpret_cast<const char*>(&t), sizeof t);
  EXPECT_EQ(QVUnmarshal(Bytes(fixoTexto), Bytes(std::string("AB")), &t), RPC_X_BAD_STUB_DATA);
  EXPECT_EQ(QVUnmarshal(Bytes(fixoTexto), Bytes(std::string("A\0", 2)), &t), S_OK);
  QVLibera(&t);
  auto a = Zerado<_REG_AGENDAMENTO_REL>();
  std::string fixoAgenda(reinterpret_cast<const char*>(&a), sizeof a);
  EXPECT_EQ(QVUnmarshal(Bytes(fixoAgenda), Bytes(std::string("\x03\x00\x00\x00xyz", 7) + std::string(12, '\0')), &a),
            RPC_X_BAD_STUB_DATA);
}

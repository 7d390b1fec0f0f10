#include "platform/QVCom.h"

#include <gtest/gtest.h>

namespace {

constexpr CLSID kClasse = QVGuid("{11111111-2222-3333-4444-555555555555}");
constexpr IID kInterface = QVGuid("{66666666-2222-3333-4444-555555555555}");

constexpr IID kBase = QVGuid("{77777777-2222-3333-4444-555555555555}");

struct CObjeto final : TQVObjetoCom<IUnknown> {
  explicit CObjeto(bool* pDestruido = nullptr) : TQVObjetoCom(kInterface, kBase), m_pDestruido(pDestruido) {}
  ~CObjeto() override {
    if (m_pDestruido != nullptr) *m_pDestruido = true;
  }
  bool* m_pDestruido;
};

struct CFabrica final : IClassFactory {
  HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  std::uint32_t AddRef() override { return ++refs; }
  std::uint32_t Release() override { return --refs; }
  HRESULT CreateInstance(IUnknown* pOuter, REFIID riid, void** ppv) override {
    return TQVFabricaDeClasse([] { return new CObjeto(); }).CreateInstance(pOuter, riid, ppv);
  }
  HRESULT LockServer(bool) override { return S_OK; }
  int refs = 0;
};

}  // namespace

TEST(QVCom, CriacaoPorIdentificadorDeClasse) {
  CFabrica fabrica;
  std::uint32_t cookie = 0;
  ASSERT_EQ(CoRegisterClassObject(kClasse, &fabrica, &cookie), S_OK);
  EXPECT_EQ(fabrica.refs, 1);  // the registry holds one reference
  std::uint32_t outro = 0;
  EXPECT_EQ(CoRegisterClassObject(kClasse, &fabrica, &outro), CO_E_OBJISREG);

  CQVComPtr<IUnknown> objeto;
  ASSERT_EQ(CoCreateInstance(kClasse, nullptr, CLSCTX_ALL, kInterface, objeto.ppv()), S_OK);
  EXPECT_TRUE(objeto);
  void* p = reinterpret_cast<void*>(1);
  EXPECT_EQ(CoCreateInstance(kClasse, nullptr, CLSCTX_ALL, QVGuid("{00000000-0000-0000-0000-0000000000AA}"), &p),
            E_NOINTERFACE);
  EXPECT_EQ(p, nullptr);

  ASSERT_EQ(CoRevokeClassObject(cookie), S_OK);
  EXPECT_EQ(fabrica.refs, 0);
  EXPECT_EQ(CoCreateInstance(kClasse, nullptr, CLSCTX_ALL, kInterface, objeto.ppv()), REGDB_E_CLASSNOTREG);
  EXPECT_FALSE(objeto);
  EXPECT_EQ(CoRevokeClassObject(cookie), E_INVALIDARG);
}

// The process's class factory makes an object that holds only the caller's
// reference. The object answers its interfaces with a reference added each,
// and goes with its last reference.
TEST(QVCom, FabricaDeClasseEObjetoContadoPorReferencias) {
  std::atomic<int> travas{0};
  bool semMemoria = false, destruido = false;
  auto fabrica =
      TQVFabricaDeClasse([&]() -> CObjeto* { return semMemoria ? nullptr : new CObjeto(&destruido); }, &travas);
  IUnknown* o = nullptr;
  ASSERT_EQ(fabrica.CreateInstance(nullptr, kInterface, reinterpret_cast<void**>(&o)), S_OK);
  void* p = reinterpret_cast<void*>(1);
  for (const IID& iid : {IID_IUnknown, kInterface, kBase}) {
    ASSERT_EQ(o->QueryInterface(iid, &p), S_OK);
    EXPECT_EQ(p, o);
  }
  EXPECT_EQ(o->QueryInterface(IID_IClassFactory, &p), E_NOINTERFACE);
  EXPECT_EQ(p, nullptr);
  EXPECT_EQ(o->QueryInterface(kInterface, nullptr), E_POINTER);
  for (std::uint32_t n = 3; n > 0; --n) EXPECT_EQ(o->Release(), n);  // the three QueryInterface added
  EXPECT_FALSE(destruido);
  EXPECT_EQ(o->Release(), 0u);
  EXPECT_TRUE(destruido);

  p = reinterpret_cast<void*>(1);
  EXPECT_EQ(fabrica.CreateInstance(&fabrica, kInterface, &p), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(p, nullptr);
  semMemoria = true;
  p = reinterpret_cast<void*>(1);
  EXPECT_EQ(fabrica.CreateInstance(nullptr, kInterface, &p), E_OUTOFMEMORY);
  EXPECT_EQ(p, nullptr);
  for (const bool trava : {true, true, false}) EXPECT_EQ(fabrica.LockServer(trava), S_OK);
  EXPECT_EQ(travas.load(), 1);
  EXPECT_EQ(fabrica.QueryInterface(kInterface, &p), E_NOINTERFACE);
}

// Object hosting: the platform's base object interface, class factories and
// object creation by class identifier.
//
// Objects are reference counted: QueryInterface hands out an interface with
// one reference added, Release drops one and destroys the object at zero.
// Class objects (factories) are registered per process; CoCreateInstance
// finds the factory of a class identifier and asks it for an object.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "platform/QVGuid.h"
#include "platform/QVHResult.h"

inline constexpr IID IID_IUnknown = QVGuid("{00000000-0000-0000-C000-000000000046}");
inline constexpr IID IID_IClassFactory = QVGuid("{00000001-0000-0000-C000-000000000046}");

// Slots 0..2 of every interface.
struct IUnknown {
  virtual HRESULT QueryInterface(REFIID riid, void** ppvObject) = 0;
  virtual std::uint32_t AddRef() = 0;
  virtual std::uint32_t Release() = 0;

 protected:
  ~IUnknown() = default;  // objects end through Release, never through delete
};

struct IClassFactory : IUnknown {
  virtual HRESULT CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppvObject) = 0;
  virtual HRESULT LockServer(bool fLock) = 0;

 protected:
  ~IClassFactory() = default;
};

constexpr std::uint32_t CLSCTX_INPROC_SERVER = 0x1;
constexpr std::uint32_t CLSCTX_LOCAL_SERVER = 0x4;
constexpr std::uint32_t CLSCTX_ALL = 0x17;

// Registers the class object of a class for this process; the registry keeps
// one reference to it until it is revoked. Registering a class twice answers
// CO_E_OBJISREG.
constexpr HRESULT CO_E_OBJISREG = QVHr(0x800401FBu);
[[nodiscard]] HRESULT CoRegisterClassObject(REFCLSID rclsid, IClassFactory* pFactory,
                                            std::uint32_t* pdwRegister);
[[nodiscard]] HRESULT CoRevokeClassObject(std::uint32_t dwRegister);
// Gives the registered class object with one reference added, or
// REGDB_E_CLASSNOTREG.
[[nodiscard]] HRESULT CoGetClassObject(REFCLSID rclsid, IClassFactory** ppFactory);
// Creates an object of a registered class and asks it for riid. On failure
// *ppv is null. A class that is not registered answers REGDB_E_CLASSNOTREG.
[[nodiscard]] HRESULT CoCreateInstance(REFCLSID rclsid, IUnknown* pUnkOuter,
                                       std::uint32_t dwClsContext, REFIID riid, void** ppv);

// QueryInterface, AddRef and Release of a reference-counted object that
// implements the interface I: it answers IID_IUnknown and the identifiers it
// was made with (I's own and its base interface's) with I's pointer and one
// reference added. It starts with one reference, its creator's, and deletes
// itself when the last goes. The count is atomic: references may be taken
// and dropped from any thread.
template <class I>
class TQVObjetoCom : public I {
 public:
  TQVObjetoCom(const TQVObjetoCom&) = delete;
  TQVObjetoCom& operator=(const TQVObjetoCom&) = delete;

  HRESULT QueryInterface(REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == m_Iid || riid == m_IidBase) {
      *ppv = static_cast<I*>(this);
      AddRef();
      return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
  }
  std::uint32_t AddRef() override { return ++m_cReferencias; }
  std::uint32_t Release() override {
    const std::uint32_t n = --m_cReferencias;
    if (n == 0) delete this;
    return n;
  }

 protected:
  explicit TQVObjetoCom(REFIID iid, REFIID iidBase = IID_IUnknown) : m_Iid(iid), m_IidBase(iidBase) {}
  virtual ~TQVObjetoCom() = default;

 private:
  const IID m_Iid;
  const IID m_IidBase;
  std::atomic<std::uint32_t> m_cReferencias{1};
};

// A class object that lives as long as the process (its references are not
// counted): CreateInstance makes an object with `cria`, which answers it
// holding one reference (null when out of memory), and hands out riid from
// it. Server locks, when asked for, are counted in *pTravas.
template <class Cria>
class TQVFabricaDeClasse final : public IClassFactory {
 public:
  explicit TQVFabricaDeClasse(Cria cria, std::atomic<int>* pTravas = nullptr)
      : m_Cria(std::move(cria)), m_pTravas(pTravas) {}

  HRESULT QueryInterface(REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IClassFactory) {
      *ppv = static_cast<IClassFactory*>(this);
      return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
  }
  std::uint32_t AddRef() override { return 2; }
  std::uint32_t Release() override { return 1; }

  HRESULT CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    if (pUnkOuter != nullptr) return CLASS_E_NOAGGREGATION;
    auto* objeto = m_Cria();
    if (objeto == nullptr) return E_OUTOFMEMORY;
    const HRESULT hr = objeto->QueryInterface(riid, ppv);
    objeto->Release();  // the creator's reference; QueryInterface added the caller's
    return hr;
  }
  HRESULT LockServer(bool fLock) override {
    if (m_pTravas != nullptr) m_pTravas->fetch_add(fLock ? 1 : -1);
    return S_OK;
  }

 private:
  Cria m_Cria;
  std::atomic<int>* m_pTravas;
};

// Owning interface pointer: releases its reference when it goes away.
template <class T>
class CQVComPtr {
 public:
  CQVComPtr() = default;
  CQVComPtr(const CQVComPtr& o) : p_(o.p_) {
    if (p_ != nullptr) p_->AddRef();
  }
  CQVComPtr(CQVComPtr&& o) noexcept : p_(o.p_) { o.p_ = nullptr; }
  CQVComPtr& operator=(CQVComPtr o) noexcept {
    T* t = p_;
    p_ = o.p_;
    o.p_ = t;
    return *this;
  }
  ~CQVComPtr() { Release(); }

  // Takes over a reference the caller already holds.
  static CQVComPtr Attach(T* p) {
    CQVComPtr c;
    c.p_ = p;
    return c;
  }
  void Release() {
    if (p_ != nullptr) {
      T* t = p_;
      p_ = nullptr;
      t->Release();
    }
  }
  T* Detach() {
    T* t = p_;
    p_ = nullptr;
    return t;
  }
  T* get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }
  // For out parameters: releases what it held and hands out its slot.
  T** operator&() {
    Release();
    return &p_;
  }
  void** ppv() {
    Release();
    return reinterpret_cast<void**>(&p_);
  }

 private:
  T* p_ = nullptr;
};

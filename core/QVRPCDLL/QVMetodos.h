// Method tables: each interface is written down once, as the list of its
// methods in slot order, and everything that has one piece per method is
// expanded from that list: the interface's pure virtuals, the frame's
// forwarding to its server, the transport's proxies and stub dispatch, and
// the tests' round trips. Adding or changing a method is one line of a
// table; nothing else in the transport names it.
//
// A table is a macro of (X, ctx) that calls X once per method:
//
//   #define QV_METODOS_IQVGE_PROJETO(X, ctx) ...
//     X(ctx, 9, LeRegistro, (Ent, std::uint32_t, lPtr), (Sai, _REG_PROJETO_ATENDIMENTO_PS, regps))
//     ...
//
// ctx is passed through untouched (the interface or the class expanding the
// table); then the slot, the method's name and each parameter as
// (direction, type, name):
//
//   Ent     in: passed by value; the caller keeps what it owns
//   Sai     out: passed as T*; what it owns afterwards is the caller's
//   EntSai  in/out: passed as T*; the callee replaces it
//
// and the types a parameter may have: an integer, a wire record (every one
// has an ownership descriptor), a system string (BSTR), or, out only, T* for
// a record the callee allocates or leaves null.
//
// Invariants (checked at compile time by QV_DESCREVE_INTERFACE): the slots
// of a table are consecutive, starting right after its base interface's
// (3 for IQVUnknown, after the platform's three); the declaration order of
// the pure virtuals is the table's order, so the slot is the vtable slot and
// the number the transport sends.
//
// Walking a table at compile time (for code that must name and convert every
// parameter, such as a scripting layer):
//
//   QVParaCadaMetodo<IQVGE_Projeto>([]<class M>() {
//     M::kSlot; M::kNome;               // 9, "LeRegistro"
//     typename M::Parametros;           // std::tuple<QVParametro<Ent, std::uint32_t>, ...>
//     M::kNomesParametros;              // {"lPtr", "regps"}
//     M::kMembro;                       // &IQVGE_Projeto::LeRegistro
//   });
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "df/qvlibex/QVDescritorRegistro.h"
#include "platform/QVBstr.h"
#include "platform/QVGuid.h"
#include "platform/QVTaskMem.h"

enum class EQVDirecao : std::uint8_t { Ent, Sai, EntSai };

// The types a parameter may have.
template <class T>
concept QVTipoParametro = std::integral<T> || std::is_class_v<T> || std::same_as<T, BSTR> ||
                          (std::is_pointer_v<T> && std::is_class_v<std::remove_pointer_t<T>>);

template <EQVDirecao D, QVTipoParametro T>
struct QVParametro {
  static_assert(D == EQVDirecao::Sai || !std::is_pointer_v<T> || std::same_as<T, BSTR>,
                "a record the callee allocates can only be an out parameter");
  static constexpr EQVDirecao kDirecao = D;
  static constexpr bool kEntra = D != EQVDirecao::Sai;  // travels with the call
  static constexpr bool kSai = D != EQVDirecao::Ent;  // travels with the answer
  using Tipo = T;  // the value: Ent passes it, Sai and EntSai pass its address
};

// One method of interface I at a slot: specialised by QV_DESCREVE_INTERFACE.
//   kSlot, kNome, Parametros (std::tuple of QVParametro), kNomesParametros,
//   kMembro (pointer to I's member function).
template <class I, std::uint16_t Slot>
struct QVMetodo;

// One interface: specialised by QV_DESCREVE_INTERFACE.
//   Base (void for IQVUnknown), kNome, kIid, kSlots (its own methods'),
//   kPrimeiroSlot.
template <class I>
struct QVInterface;

// A parameter's value owns what a record, a system string or an allocated
// record owns. QVZeraValor makes a value that owns nothing (without freeing);
// QVLiberaValor frees what it owns and leaves it owning nothing.
template <class T>
void QVZeraValor(T* p) {
  if constexpr (std::is_class_v<T>)
    std::memset(static_cast<void*>(p), 0, sizeof *p);
  else
    *p = T{};
}
template <class T>
void QVLiberaValor(T* p) {
  if constexpr (std::is_class_v<T>) {
    QVLibera(p);
  } else if constexpr (std::same_as<T, BSTR>) {
    SysFreeString(*p);
    *p = nullptr;
  } else if constexpr (std::is_pointer_v<T>) {
    if (*p != nullptr) {
      QVLibera(*p);
      CoTaskMemFree(*p);
      *p = nullptr;
    }
  }
}

// ---- walking the tables ----

namespace qv_metodos_detalhe {

template <class I, std::size_t... k>
auto Proprios(std::index_sequence<k...>) -> std::tuple<QVMetodo<I, QVInterface<I>::kSlots[k]>...>;

template <class I>
struct Todos {
  using Tipo = decltype(std::tuple_cat(
      std::declval<typename Todos<typename QVInterface<I>::Base>::Tipo>(),
      std::declval<decltype(Proprios<I>(std::make_index_sequence<std::size(QVInterface<I>::kSlots)>()))>()));
};
template <>
struct Todos<void> {
  using Tipo = std::tuple<>;
};

template <class Base>
constexpr std::uint16_t PrimeiroSlot() {
  if constexpr (std::is_void_v<Base>)
    return 3;  // after QueryInterface, AddRef and Release
  else
    return static_cast<std::uint16_t>(QVInterface<Base>::kPrimeiroSlot + std::size(QVInterface<Base>::kSlots));
}

template <std::size_t N>
constexpr bool Consecutivos(const std::uint16_t (&slots)[N], std::uint16_t primeiro) {
  for (std::size_t i = 0; i < N; ++i)
    if (slots[i] != primeiro + i) return false;
  return true;
}

}  // namespace qv_metodos_detalhe

// Every method of I, its bases' first: a std::tuple of QVMetodo types in
// slot order.
template <class I>
using QVMetodosDe = typename qv_metodos_detalhe::Todos<I>::Tipo;

// Calls f.template operator()<M>() for every method M of I, in slot order.
template <class I, class F>
constexpr void QVParaCadaMetodo(F&& f) {
  [&]<class... M>(std::tuple<M...>*) { (f.template operator()<M>(), ...); }(static_cast<QVMetodosDe<I>*>(nullptr));
}

// Calls f.template operator()<k, P>() for each parameter P of method M, k
// its position.
template <class M, class F>
constexpr void QVParaCadaParametro(F&& f) {
  [&]<std::size_t... k>(std::index_sequence<k...>) {
    (f.template operator()<k, std::tuple_element_t<k, typename M::Parametros>>(), ...);
  }(std::make_index_sequence<std::tuple_size_v<typename M::Parametros>>());
}

// How many of M's parameters travel with the call (in, in/out) and with
// the answer (out, in/out).
template <class M>
inline constexpr std::uint32_t QVQuantasEntradas = []<class... P>(std::tuple<P...>*) {
  return (0u + ... + P::kEntra);
}(static_cast<typename M::Parametros*>(nullptr));
template <class M>
inline constexpr std::uint32_t QVQuantasSaidas = []<class... P>(std::tuple<P...>*) {
  return (0u + ... + P::kSai);
}(static_cast<typename M::Parametros*>(nullptr));

// The values of one call of method M, one per parameter: owning nothing
// when made, freed deeply when they go. Chama calls the method with them,
// the in ones by value and the others by address.
template <class M>
class CQVValoresChamada {
  template <class Ps>
  struct Tipos;
  template <class... P>
  struct Tipos<std::tuple<P...>> {
    using Tipo = std::tuple<typename P::Tipo...>;
  };

 public:
  using Valores = typename Tipos<typename M::Parametros>::Tipo;
  template <std::size_t k>
  using Tipo = std::tuple_element_t<k, Valores>;

  CQVValoresChamada() {
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() { QVZeraValor(&Valor<k>()); });
  }
  ~CQVValoresChamada() {
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() { QVLiberaValor(&Valor<k>()); });
  }
  CQVValoresChamada(const CQVValoresChamada&) = delete;
  CQVValoresChamada& operator=(const CQVValoresChamada&) = delete;

  template <std::size_t k>
  Tipo<k>& Valor() {
    return std::get<k>(m_Valores);
  }

  // Hands value k to *p, which owned nothing, and keeps nothing of it.
  template <std::size_t k>
  void Entrega(Tipo<k>* p) {
    std::memcpy(static_cast<void*>(p), &Valor<k>(), sizeof *p);
    QVZeraValor(&Valor<k>());
  }

  template <class I>
  HRESULT Chama(I* objeto) {
    return [&]<class... P, std::size_t... k>(std::tuple<P...>*, std::index_sequence<k...>) {
      return (objeto->*M::kMembro)(Argumento<P>(std::get<k>(m_Valores))...);
    }(static_cast<typename M::Parametros*>(nullptr), std::make_index_sequence<std::tuple_size_v<Valores>>());
  }

 private:
  template <class P>
  static decltype(auto) Argumento(typename P::Tipo& valor) {
    if constexpr (P::kDirecao == EQVDirecao::Ent)
      return (valor);
    else
      return &valor;
  }

  Valores m_Valores;
};

// ---- expanding the tables ----

// QV_PP_MAPA(f, (a), (b), ...) gives "f (a), f (b), ...": up to six
// parameters per method.
#define QV_PP_CONTA(...) QV_PP_CONTA_(__VA_ARGS__ __VA_OPT__(, ) 6, 5, 4, 3, 2, 1, 0)
#define QV_PP_CONTA_(a1, a2, a3, a4, a5, a6, n, ...) n
#define QV_PP_JUNTA(a, b) QV_PP_JUNTA_(a, b)
#define QV_PP_JUNTA_(a, b) a##b
#define QV_PP_MAPA(f, ...) QV_PP_JUNTA(QV_PP_MAPA_, QV_PP_CONTA(__VA_ARGS__))(f __VA_OPT__(, ) __VA_ARGS__)
#define QV_PP_MAPA_0(f)
#define QV_PP_MAPA_1(f, p) f p
#define QV_PP_MAPA_2(f, p, ...) f p, QV_PP_MAPA_1(f, __VA_ARGS__)
#define QV_PP_MAPA_3(f, p, ...) f p, QV_PP_MAPA_2(f, __VA_ARGS__)
#define QV_PP_MAPA_4(f, p, ...) f p, QV_PP_MAPA_3(f, __VA_ARGS__)
#define QV_PP_MAPA_5(f, p, ...) f p, QV_PP_MAPA_4(f, __VA_ARGS__)
#define QV_PP_MAPA_6(f, p, ...) f p, QV_PP_MAPA_5(f, __VA_ARGS__)

// One parameter as declared in the interface ("_REG_X* nome"), as passed on
// ("nome"), as described (QVParametro<...>) and named ("\"nome\"").
#define QV_TIPO_DECLARADO_Ent(T) T
#define QV_TIPO_DECLARADO_Sai(T) T*
#define QV_TIPO_DECLARADO_EntSai(T) T*
#define QV_PARAMETRO_DECLARADO(dir, T, nome) QV_TIPO_DECLARADO_##dir(T) nome
#define QV_PARAMETRO_ARGUMENTO(dir, T, nome) nome
#define QV_PARAMETRO_DESCRITO(dir, T, nome) QVParametro<EQVDirecao::dir, T>
#define QV_PARAMETRO_NOME(dir, T, nome) std::string_view(#nome)

// X for a table: the interface's pure virtual of one method.
#define QV_DECLARA_METODO(ctx, slot, nome, ...) \
  virtual HRESULT nome(QV_PP_MAPA(QV_PARAMETRO_DECLARADO, __VA_ARGS__)) = 0;

// X for a table, inside a server class: the business method of the same
// name that the frame calls, virtual so that tests can stand in for it. In
// records come by const reference (the frame holds the caller's copy).
template <class T>
using QVEntradaServidor = std::conditional_t<std::is_class_v<T>, const T&, T>;
#define QV_TIPO_SERVIDOR_Ent(T) QVEntradaServidor<T>
#define QV_TIPO_SERVIDOR_Sai(T) T*
#define QV_TIPO_SERVIDOR_EntSai(T) T*
#define QV_PARAMETRO_SERVIDOR(dir, T, nome) QV_TIPO_SERVIDOR_##dir(T) nome
#define QV_DECLARA_METODO_SERVIDOR(ctx, slot, nome, ...) \
  virtual HRESULT nome(QV_PP_MAPA(QV_PARAMETRO_SERVIDOR, __VA_ARGS__));

// X for a table, inside a class that implements the interface ctx: the
// method passes its arguments to this->Executa<QVMetodo<ctx, slot>>(...).
#define QV_IMPLEMENTA_METODO(ctx, slot, nome, ...)                                                 \
  HRESULT nome(QV_PP_MAPA(QV_PARAMETRO_DECLARADO, __VA_ARGS__)) override {                         \
    return this->template Executa<QVMetodo<ctx, slot>>(QV_PP_MAPA(QV_PARAMETRO_ARGUMENTO, __VA_ARGS__)); \
  }

#define QV_DESCREVE_METODO(I, slot, nome, ...)                                             \
  template <>                                                                              \
  struct QVMetodo<I, slot> {                                                               \
    static constexpr std::uint16_t kSlot = slot;                                           \
    static constexpr std::string_view kNome = #nome;                                       \
    using Parametros = std::tuple<QV_PP_MAPA(QV_PARAMETRO_DESCRITO, __VA_ARGS__)>;         \
    static constexpr std::array<std::string_view, std::tuple_size_v<Parametros>> kNomesParametros{ \
        QV_PP_MAPA(QV_PARAMETRO_NOME, __VA_ARGS__)};                                       \
    static constexpr auto kMembro = &I::nome;                                              \
  };
#define QV_SLOT_DO_METODO(ctx, slot, nome, ...) slot,

// After the interface I (declared with QV_DECLARA_METODO from TABELA), at
// namespace scope: its description and that of each of its methods.
#define QV_DESCREVE_INTERFACE(I, BaseI, iid, TABELA)                                                 \
  TABELA(QV_DESCREVE_METODO, I)                                                                      \
  template <>                                                                                        \
  struct QVInterface<I> {                                                                            \
    using Base = BaseI;                                                                              \
    static constexpr std::string_view kNome = #I;                                                    \
    static constexpr const IID& kIid = iid;                                                          \
    static constexpr std::uint16_t kSlots[] = {TABELA(QV_SLOT_DO_METODO, I)};                        \
    static constexpr std::uint16_t kPrimeiroSlot = qv_metodos_detalhe::PrimeiroSlot<BaseI>();        \
    static_assert(qv_metodos_detalhe::Consecutivos(kSlots, kPrimeiroSlot),                           \
                  #I ": the slots must follow one another from the base interface's last");          \
  };

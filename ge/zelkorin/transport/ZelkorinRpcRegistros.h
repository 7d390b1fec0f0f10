// Parameters in and out of the transport's messages, for both sides. Each
// parameter travels as one Valor, by its type:
//
//   integer                numero, checked against the parameter's width
//                          on arrival
//   wire record            registro: its fixed bytes and its owned data
//                          (core/QVRPCDLL/QVMarshaller.h)
//   system string (BSTR)   texto: its UTF-16 bytes; empty for no string
//   T* allocated record    registro, or nenhum when the callee gave none
//
// A value that is not of its parameter's kind, does not fit it, or does not
// unmarshal within the limits answers RPC_X_BAD_STUB_DATA and leaves the
// receiver's value owning nothing.
#pragma once

#include <capnp/message.h>
#include <concepts>
#include <cstring>
#include <span>
#include <string>
#include <utility>

#include "core/QVRPCDLL/QVMarshaller.h"
#include "core/QVRPCDLL/QVMetodos.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/transport/ZelkorinRpc.capnp.h"
#include "platform/QVBstr.h"
#include "platform/QVTaskMem.h"

// How much of one message either side reads: a few records at their limit,
// with room for the framing. A larger message ends the connection.
inline capnp::ReaderOptions QVOpcoesLeitura(const QVLimitesMarshal& limites) {
  capnp::ReaderOptions opcoes;
  opcoes.traversalLimitInWords = (limites.uiMaxBytes * 3 + (16u << 20)) / 8;
  return opcoes;
}

inline std::span<const std::uint8_t> QVBytesDe(capnp::Data::Reader d) { return {d.begin(), d.size()}; }

inline capnp::Data::Reader QVDataDe(const std::string& s) {
  return capnp::Data::Reader(reinterpret_cast<const kj::byte*>(s.data()), s.size());
}

template <class T>
void QVParaRegistro(const T& registro, zk::Registro::Builder b) {
  std::string fixo, anexos;
  QVMarshal(registro, &fixo, &anexos);
  b.setFixo(QVDataDe(fixo));
  b.setAnexos(QVDataDe(anexos));
}

// Writes one parameter's value.
template <class T>
void QVEscreveValor(const T& valor, zk::Valor::Builder b) {
  if constexpr (std::integral<T>) {
    b.setNumero(valor);
  } else if constexpr (std::is_class_v<T>) {
    QVParaRegistro(valor, b.initRegistro());
  } else if constexpr (std::same_as<T, BSTR>) {
    b.setTexto(capnp::Data::Reader(reinterpret_cast<const kj::byte*>(valor), SysStringByteLen(valor)));
  } else if (valor == nullptr) {
    b.setNenhum();
  } else {
    QVParaRegistro(*valor, b.initRegistro());
  }
}

// Reads one parameter's value into *p, which owns nothing before; on
// failure *p owns nothing after.
template <class T>
[[nodiscard]] HRESULT QVLeValor(zk::Valor::Reader v, T* p, const QVLimitesMarshal& limites) {
  using Tipo = zk::Valor::Which;
  if constexpr (std::integral<T>) {
    if (v.which() != Tipo::NUMERO || !std::in_range<T>(v.getNumero())) return RPC_X_BAD_STUB_DATA;
    *p = static_cast<T>(v.getNumero());
    return S_OK;
  } else if constexpr (std::is_class_v<T>) {
    if (v.which() != Tipo::REGISTRO) return RPC_X_BAD_STUB_DATA;
    const zk::Registro::Reader r = v.getRegistro();
    return QVUnmarshal(QVBytesDe(r.getFixo()), QVBytesDe(r.getAnexos()), p, limites);
  } else if constexpr (std::same_as<T, BSTR>) {
    if (v.which() != Tipo::TEXTO) return RPC_X_BAD_STUB_DATA;
    const capnp::Data::Reader d = v.getTexto();
    if (d.size() % 2 != 0 || d.size() / 2 > limites.ulMaxCaracteresBstr) return RPC_X_BAD_STUB_DATA;
    if (d.size() == 0) return S_OK;
    // The bytes of a message are not aligned for UTF-16: copied as bytes.
    *p = SysAllocStringLen(nullptr, static_cast<std::uint32_t>(d.size() / 2));
    if (*p == nullptr) return E_OUTOFMEMORY;
    std::memcpy(*p, d.begin(), d.size());
    return S_OK;
  } else {
    using Registro = std::remove_pointer_t<T>;
    if (v.which() == Tipo::NENHUM) return S_OK;
    auto* registro = static_cast<Registro*>(CoTaskMemAlloc(sizeof(Registro)));
    if (registro == nullptr) return E_OUTOFMEMORY;
    const HRESULT hr = QVLeValor(v, registro, limites);
    if (FAILED(hr)) {
      CoTaskMemFree(registro);
      return hr;
    }
    *p = registro;
    return S_OK;
  }
}

// Parameter k of method M as the other side sent it, logged with the
// method's and the parameter's names when it is refused.
template <class M, std::size_t k, class T>
[[nodiscard]] HRESULT QVLeParametro(zk::Valor::Reader v, T* p, const QVLimitesMarshal& limites) {
  const HRESULT hr = QVLeValor(v, p, limites);
  if (FAILED(hr))
    QVLogaFalhaHr(QV_LOCAL, "QVLeValor(v, p, limites)", hr,
                  {{"metodo", std::string(M::kNome)}, {"parametro", std::string(M::kNomesParametros[k])}});
  return hr;
}

// Records and system strings in and out of the transport's messages, for
// both sides: a record travels as a Registro (its fixed bytes and its owned
// data, core/QVRPCDLL/QVMarshaller.h), a system string as its UTF-16 bytes.
#pragma once

#include <capnp/message.h>
#include <cstring>
#include <span>
#include <string>

#include "core/QVRPCDLL/QVMarshaller.h"
#include "ge/zelkorin/transport/ZelkorinRpc.capnp.h"
#include "platform/QVBstr.h"

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

// A record the other side sent: S_OK, or RPC_X_BAD_STUB_DATA with
// *pRegistro zeroed (owning nothing).
template <class T>
[[nodiscard]] HRESULT QVDeRegistro(zk::Registro::Reader r, T* pRegistro, const QVLimitesMarshal& limites) {
  const HRESULT hr = QVUnmarshal(QVBytesDe(r.getFixo()), QVBytesDe(r.getAnexos()), pRegistro, limites);
  if (FAILED(hr)) std::memset(static_cast<void*>(pRegistro), 0, sizeof *pRegistro);
  return hr;
}

// A system string as its UTF-16 bytes; the empty string (or null) as none.
inline capnp::Data::Reader QVDataDeBstr(BSTR bs) {
  return capnp::Data::Reader(reinterpret_cast<const kj::byte*>(bs), bs != nullptr ? SysStringByteLen(bs) : 0);
}

// The string the other side sent, allocated for the receiver (null when
// empty). An odd byte count or more characters than the limits allow
// answer RPC_X_BAD_STUB_DATA and *pbs null.
[[nodiscard]] inline HRESULT QVDeBstr(capnp::Data::Reader d, BSTR* pbs, const QVLimitesMarshal& limites) {
  *pbs = nullptr;
  if (d.size() % 2 != 0 || d.size() / 2 > limites.ulMaxCaracteresBstr) return RPC_X_BAD_STUB_DATA;
  if (d.size() == 0) return S_OK;
  std::u16string texto(d.size() / 2, u'\0');
  std::memcpy(texto.data(), d.begin(), d.size());
  *pbs = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(texto.data()), static_cast<std::uint32_t>(texto.size()));
  return *pbs != nullptr ? S_OK : E_OUTOFMEMORY;
}

// A zeroed record freed deeply when it goes: the server's copy of what a
// call received, or what the object answered, until it is sent.
template <class T>
struct CQVRegistroLocal {
  CQVRegistroLocal() { std::memset(static_cast<void*>(&r), 0, sizeof r); }
  ~CQVRegistroLocal() { QVLibera(&r); }
  CQVRegistroLocal(const CQVRegistroLocal&) = delete;
  CQVRegistroLocal& operator=(const CQVRegistroLocal&) = delete;
  T r;
};

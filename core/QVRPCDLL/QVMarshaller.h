// Carrying wire records between processes.
//
// A record travels as two byte strings, driven by its ownership descriptor
// (df/qvlibex/QVDescritorRegistro.h), so that no method has a copy routine
// of its own:
//
//   fixo    the record's own bytes, exactly its size, fillers included;
//           every pointer field zero, and the count of an absent array 0.
//   anexos  everything it owns, depth first, in descriptor order:
//             system string   u32 byte length, then the UTF-16 bytes
//                             (length 0: no string)
//             array           its count's elements, raw (count in fixo)
//             record array    per element: its fixo, then its anexos
//             embedded record its own anexos, in place
//
// Unmarshalling checks everything before the receiver sees it and answers
// RPC_X_BAD_STUB_DATA, owning nothing, when: fixo is not the record's size;
// anexos end before a count says they should, or run on after the last
// field; an array has more elements, or a string more characters, than the
// limits allow; a string's byte length is odd; a text lacks its terminating
// zero. Memory handed to the receiver comes from the task allocator and
// system strings, as an in-process call would give it.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "df/qvlibex/QVDescritorRegistro.h"
#include "platform/QVHResult.h"

struct QVLimitesMarshal {
  std::uint32_t ulMaxElementos = 1u << 20;  // per array
  std::uint32_t ulMaxCaracteresBstr = 1u << 20;  // per system string
  std::uint64_t uiMaxBytes = 64ull << 20;  // of a record's anexos
};

void QVMarshal(const QVDescritorRegistro& d, const void* registro, std::string* pFixo, std::string* pAnexos);

// registro receives the record (it must own nothing: its old contents are
// overwritten).
[[nodiscard]] HRESULT QVUnmarshal(const QVDescritorRegistro& d, std::span<const std::uint8_t> fixo,
                                  std::span<const std::uint8_t> anexos, void* registro,
                                  const QVLimitesMarshal& limites = QVLimitesMarshal{});

template <class T>
void QVMarshal(const T& registro, std::string* pFixo, std::string* pAnexos) {
  QVMarshal(QVDescritor<T>(), &registro, pFixo, pAnexos);
}
template <class T>
[[nodiscard]] HRESULT QVUnmarshal(std::span<const std::uint8_t> fixo, std::span<const std::uint8_t> anexos,
                                  T* pRegistro, const QVLimitesMarshal& limites = QVLimitesMarshal{}) {
  return QVUnmarshal(QVDescritor<T>(), fixo, anexos, pRegistro, limites);
}

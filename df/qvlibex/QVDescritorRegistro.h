// Table-driven description of what a wire record owns.
//
// A record is a fixed block of bytes (fillers included) plus whatever its
// pointer fields point to: task-allocated arrays of bytes, of integers or of
// records (which may own more), system strings, and records embedded by
// value that own things themselves. One descriptor per record type lists
// those fields; the routines below (deep free, deep copy, deep compare) and
// the marshaller that carries records between processes are all driven by
// these tables, so a record's ownership is written down exactly once.
//
// Counts: an array's element count is an unsigned field of the same record
// (2 or 4 bytes wide; 4-byte counts declared signed on the wire are read as
// unsigned). Reserved pointer fields (pFiller) are not listed: they are
// never followed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "platform/QVHResult.h"

struct QVDescritorRegistro;

enum class EQVCampoPonteiro : std::uint8_t {
  Bstr,  // a system string handle at the offset
  Array,  // a pointer to `contagem` elements of `tamElemento` bytes
  Registros,  // a pointer to `contagem` records described by `elemento`
  Aninhado,  // a record embedded by value at the offset, described by `elemento`
};

struct QVCampoPonteiro {
  const char* nome;
  std::uint32_t offset;
  EQVCampoPonteiro tipo;
  std::uint32_t offContagem;  // Array, Registros: where the count is
  std::uint8_t largContagem;  // Array, Registros: 2 or 4 bytes
  std::uint32_t tamElemento;  // Array: bytes per element
  const QVDescritorRegistro* elemento;  // Registros, Aninhado
  bool bTexto = false;  // Array of bytes that, when present, ends with its terminating zero
};

struct QVDescritorRegistro {
  const char* nome;
  std::uint32_t tamanho;
  std::span<const QVCampoPonteiro> campos;
};

// Descriptor of each record type; specialised beside each record family.
template <class T>
const QVDescritorRegistro& QVDescritor();

// Helpers to write the tables.
#define QV_CAMPO_BSTR(T, campo) \
  QVCampoPonteiro{#campo, offsetof(T, campo), EQVCampoPonteiro::Bstr, 0, 0, 0, nullptr}
#define QV_CAMPO_ARRAY(T, campo, contagem)                                                              \
  QVCampoPonteiro{#campo, offsetof(T, campo), EQVCampoPonteiro::Array, offsetof(T, contagem),         \
                  sizeof(T::contagem), sizeof(*T::campo), nullptr}
// A text: bytes counted with their terminating zero, which must be there.
#define QV_CAMPO_TEXTO(T, campo, contagem)                                                              \
  QVCampoPonteiro{#campo, offsetof(T, campo), EQVCampoPonteiro::Array, offsetof(T, contagem),         \
                  sizeof(T::contagem), sizeof(*T::campo), nullptr, true}
#define QV_CAMPO_REGISTROS(T, campo, contagem, descritor)                                                \
  QVCampoPonteiro{#campo, offsetof(T, campo), EQVCampoPonteiro::Registros, offsetof(T, contagem),      \
                  sizeof(T::contagem), sizeof(*T::campo), &(descritor)}
#define QV_CAMPO_ANINHADO(T, campo, descritor) \
  QVCampoPonteiro{#campo, offsetof(T, campo), EQVCampoPonteiro::Aninhado, 0, 0, 0, &(descritor)}

// Checks a description against itself, recursively: every field and count
// lies inside its record, counts are 2 or 4 bytes wide, and a record array's
// element size is its element descriptor's size. On failure pErro names the
// first field at fault.
bool QVDescritorConsistente(const QVDescritorRegistro& d, std::string* pErro = nullptr);

// The element count of an Array or Registros field of a record.
std::uint32_t QVLeContagem(const QVCampoPonteiro& campo, const void* registro);

// Frees everything the record owns, deeply, and leaves every listed pointer
// null and every listed count 0. The fixed bytes stay as they were.
void QVLiberaRegistro(const QVDescritorRegistro& d, void* registro);

// Copies origem into destino (d.tamanho bytes) and everything it owns into
// new task-allocated memory and system strings. A count of 0 gives a null
// pointer; a null pointer with a count gives count 0. On failure
// (E_OUTOFMEMORY) destino owns nothing: its pointers are null and counts 0.
[[nodiscard]] HRESULT QVCopiaRegistro(const QVDescritorRegistro& d, const void* origem, void* destino);

// True when both records have the same fixed bytes (pointer values aside)
// and the same owned content.
bool QVComparaRegistro(const QVDescritorRegistro& d, const void* a, const void* b);

template <class T>
void QVLibera(T* registro) {
  QVLiberaRegistro(QVDescritor<T>(), registro);
}
template <class T>
[[nodiscard]] HRESULT QVCopia(const T& origem, T* destino) {
  return QVCopiaRegistro(QVDescritor<T>(), &origem, destino);
}
template <class T>
bool QVIguais(const T& a, const T& b) {
  return QVComparaRegistro(QVDescritor<T>(), &a, &b);
}

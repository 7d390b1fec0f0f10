// The marks a database object hands out ("DBFactory.Marca(MARCA_ATENDIMENTO)"):
// marks of the database's folder for one connection, taken through the
// process's nucleus. Whatever this object marked is released when it goes,
// so every exit path of the work it guards leaves no mark behind.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "df/qvlibex/CQVDatabaseMarcaNucleo.h"

class CQVDatabaseMarca {
 public:
  // The nucleus and the connection must outlive this object.
  CQVDatabaseMarca(IQVDF_MarcaNucleo& nucleo, const IQVDF_Profiler* pConexao, std::string sPasta, std::string modulo)
      : m_nucleo(nucleo), m_pConexao(pConexao), m_sPasta(std::move(sPasta)), m_sModulo(std::move(modulo)) {}
  ~CQVDatabaseMarca();
  CQVDatabaseMarca(const CQVDatabaseMarca&) = delete;
  CQVDatabaseMarca& operator=(const CQVDatabaseMarca&) = delete;

  HRESULT Marca(std::uint8_t tipo);
  // Releases a mark this object took; a type it does not hold is left alone
  // (it may be another caller's mark in this process) and is no failure.
  HRESULT Desmarca(std::uint8_t tipo);
  bool EstaMarcado(std::uint8_t tipo) const { return m_nucleo.EstaMarcado(tipo); }

 private:
  bool Tomou(std::uint8_t tipo) const;

  IQVDF_MarcaNucleo& m_nucleo;
  const IQVDF_Profiler* m_pConexao;
  std::string m_sPasta;
  std::string m_sModulo;
  std::vector<std::uint8_t> m_vecTomadas;  // the types this object marked
};

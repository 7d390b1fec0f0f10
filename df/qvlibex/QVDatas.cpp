#include "df/qvlibex/QVDatas.h"

#include <cstdio>

namespace {

// Days from 1970-01-01 of a proleptic Gregorian date (Howard Hinnant's
// days_from_civil).
constexpr std::int64_t DiasDesde1970(std::int64_t y, int m, int d) {
  y -= m <= 2;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const std::int64_t yoe = y - era * 400;
  const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

constexpr void CivilDeDias(std::int64_t z, int* ano, int* mes, int* dia) {
  z += 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const std::int64_t doe = z - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  const int d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  const int m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  *ano = static_cast<int>(yoe + era * 400 + (m <= 2));
  *mes = m;
  *dia = d;
}

constexpr std::int64_t kDia0 = DiasDesde1970(1899, 12, 30);
constexpr std::int64_t kEpocaDataHora = DiasDesde1970(1601, 1, 1);
constexpr std::int64_t kTicksPorDia = 864000000000;
static_assert(-kDia0 == 25569);

constexpr bool Bissexto(int a) { return (a % 4 == 0 && a % 100 != 0) || a % 400 == 0; }

constexpr int DiasNoMes(int a, int m) {
  constexpr int kDias[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && Bissexto(a) ? 29 : kDias[m - 1];
}

}  // namespace

std::uint16_t QVMesAno(int ano, int mes) {
  if (ano >= 0 && ano < 100) ano += ano < 84 ? 2000 : 1900;
  if (mes < 1 || mes > 12 || ano < 1848 || ano > 4717) return 0;
  const int codigo = (ano - 1848) * 12 + mes;
  return codigo > kQVMesAnoMaximo ? 0 : static_cast<std::uint16_t>(codigo);
}

bool QVMesAnoDecompoe(std::uint16_t iMA, int* ano, int* mes) {
  if (iMA == 0 || iMA > kQVMesAnoMaximo) return false;
  *ano = 1848 + (iMA - 1) / 12;
  *mes = (iMA - 1) % 12 + 1;
  return true;
}

std::uint32_t QVDia(int ano, int mes, int dia) {
  if (ano < 1899 || ano > 9999 || mes < 1 || mes > 12 || dia < 1 || dia > DiasNoMes(ano, mes)) return 0;
  const std::int64_t n = DiasDesde1970(ano, mes, dia) - kDia0;
  return n <= 0 ? 0 : static_cast<std::uint32_t>(n);
}

bool QVDiaDecompoe(std::uint32_t dia, int* ano, int* mes, int* diaDoMes) {
  if (dia == 0) return false;
  CivilDeDias(kDia0 + dia, ano, mes, diaDoMes);
  return true;
}

std::uint16_t QVMesAnoDoDia(std::uint32_t dia) {
  int a, m, d;
  return QVDiaDecompoe(dia, &a, &m, &d) ? QVMesAno(a, m) : 0;
}

std::uint32_t QVPrimeiroDiaDoMes(std::uint16_t iMA) {
  int a, m;
  return QVMesAnoDecompoe(iMA, &a, &m) ? QVDia(a, m, 1) : 0;
}

std::uint32_t QVUltimoDiaDoMes(std::uint16_t iMA) {
  int a, m;
  return QVMesAnoDecompoe(iMA, &a, &m) ? QVDia(a, m, DiasNoMes(a, m)) : 0;
}

std::uint32_t QVHoje() {
  SYSTEMTIME st;
  GetLocalTime(&st);
  return QVDia(st.wYear, st.wMonth, st.wDay);
}

std::uint16_t QVHoraMinuto(int hora, int minuto) {
  if (hora < 0 || hora > 23 || minuto < 0 || minuto > 59) return kQVHoraInvalida;
  return static_cast<std::uint16_t>(hora * 60 + minuto);
}

bool QVHoraMinutoDecompoe(std::uint16_t valor, int* hora, int* minuto) {
  if (valor >= 24 * 60) return false;
  *hora = valor / 60;
  *minuto = valor % 60;
  return true;
}

std::int64_t QVDataHora(const SYSTEMTIME& st) {
  const std::int64_t dias = DiasDesde1970(st.wYear, st.wMonth, st.wDay) - kEpocaDataHora;
  const std::int64_t ms =
      ((static_cast<std::int64_t>(st.wHour) * 60 + st.wMinute) * 60 + st.wSecond) * 1000 + st.wMilliseconds;
  return dias * kTicksPorDia + ms * 10000;
}

SYSTEMTIME QVDataHoraDecompoe(std::int64_t valor) {
  SYSTEMTIME st{};
  if (valor < 0) return st;
  const std::int64_t dias = valor / kTicksPorDia;
  std::int64_t ms = (valor % kTicksPorDia) / 10000;
  int a, m, d;
  CivilDeDias(dias + kEpocaDataHora, &a, &m, &d);
  st.wYear = static_cast<std::uint16_t>(a);
  st.wMonth = static_cast<std::uint16_t>(m);
  st.wDay = static_cast<std::uint16_t>(d);
  // 1601-01-01 was a Monday.
  st.wDayOfWeek = static_cast<std::uint16_t>((dias + 1) % 7);
  st.wMilliseconds = static_cast<std::uint16_t>(ms % 1000);
  ms /= 1000;
  st.wSecond = static_cast<std::uint16_t>(ms % 60);
  ms /= 60;
  st.wMinute = static_cast<std::uint16_t>(ms % 60);
  st.wHour = static_cast<std::uint16_t>(ms / 60);
  return st;
}

std::int64_t QVDataHoraAgora() {
  SYSTEMTIME st;
  GetLocalTime(&st);
  return QVDataHora(st);
}

std::string QVDataHoraTexto(std::int64_t valor) {
  if (valor == 0) return {};
  const SYSTEMTIME st = QVDataHoraDecompoe(valor);
  char buf[64];
  std::snprintf(buf, sizeof buf, "%04u-%02u-%02u %02u:%02u:%02u.%03u", st.wYear, st.wMonth, st.wDay, st.wHour,
                st.wMinute, st.wSecond, st.wMilliseconds);
  return buf;
}

std::string QVDiaTexto(std::uint32_t dia) {
  int a, m, d;
  if (!QVDiaDecompoe(dia, &a, &m, &d)) return {};
  char buf[40];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", a, m, d);
  return buf;
}

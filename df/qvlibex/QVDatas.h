// Dates and times as the records carry them.
//
// Month code (iMA, 16 bits): (year - 1848) * 12 + month, month 1..12, so
// 1848-01 is 1 and 4717-12 is 34440, the last valid code. Consecutive months
// differ by one. 0 means "no month".
//
// Day number (32 bits): days since 1899-12-30, so 1899-12-31 is 1,
// 1900-01-01 is 2 and 2026-11-22 is 46348. 0 means "no date". Dates up to
// 2079-06-04 (65535) also fit the 16-bit day fields of some records.
//
// Hour-and-minute (16 bits): minutes since midnight, hour * 60 + minute,
// 0..1439; 00:00 is 0.
//
// Date-time (64 bits, the file headers' stamp): the local wall-clock time in
// 100-nanosecond ticks since 1601-01-01 00:00:00 local time.
#pragma once

#include <cstdint>
#include <string>

#include "platform/QVClock.h"

inline constexpr std::uint16_t kQVMesAnoMaximo = 34440;

// Two-digit years below 84 are 20xx, the others 19xx. Any year outside
// 1848..4717 (after that rule) or month outside 1..12 gives 0.
std::uint16_t QVMesAno(int ano, int mes);
// Splits a valid code; false (and nothing written) for 0 or codes above 34440.
bool QVMesAnoDecompoe(std::uint16_t iMA, int* ano, int* mes);

// Day number of a calendar date; 0 for an invalid date or one before 1899-12-31.
std::uint32_t QVDia(int ano, int mes, int dia);
// Splits a day number; false for 0.
bool QVDiaDecompoe(std::uint32_t dia, int* ano, int* mes, int* diaDoMes);
// The month code of a day (0 for day 0).
std::uint16_t QVMesAnoDoDia(std::uint32_t dia);
// The first and the last day of a month code (0 for an invalid code).
std::uint32_t QVPrimeiroDiaDoMes(std::uint16_t iMA);
std::uint32_t QVUltimoDiaDoMes(std::uint16_t iMA);
// Today's day number, from the local clock.
std::uint32_t QVHoje();

// Hour and minute in the 16-bit form; 0xFFFF for an invalid time.
inline constexpr std::uint16_t kQVHoraInvalida = 0xFFFF;
std::uint16_t QVHoraMinuto(int hora, int minuto);
bool QVHoraMinutoDecompoe(std::uint16_t valor, int* hora, int* minuto);

// The 64-bit date-time of a broken-down local time, and back.
std::int64_t QVDataHora(const SYSTEMTIME& st);
SYSTEMTIME QVDataHoraDecompoe(std::int64_t valor);
std::int64_t QVDataHoraAgora();
// "YYYY-MM-DD HH:MM:SS.mmm"; "" for 0.
std::string QVDataHoraTexto(std::int64_t valor);
// "YYYY-MM-DD"; "" for 0.
std::string QVDiaTexto(std::uint32_t dia);

// Currency: signed 64-bit fixed point with four decimals (1,5 is 15000).
// Arithmetic and text are exact: no floating point anywhere.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

using QVMoeda = std::int64_t;

inline constexpr QVMoeda kQVMoedaEscala = 10000;

// Text in the suite's Portuguese form: '.' between thousands, ',' before the
// decimals, '-' in front of negatives: QVMoedaTexto(-12345678, 2) gives
// "-1.234,57". decimais is 0..4; the value is rounded half away from zero.
// Without separadorMilhares the thousands are not separated ("-1234,57").
std::string QVMoedaTexto(QVMoeda valor, int decimais = 2, bool separadorMilhares = true);

// Reads that form back ("1.234,5", "-0,0001", "12"); dots are thousand
// separators and may be left out. False (and nothing written) for anything
// else, for more than four decimals, or a value out of range.
bool QVMoedaLe(std::string_view texto, QVMoeda* pValor);

// a * b of two currency values, rounded half away from zero to four decimals.
// False on overflow.
bool QVMoedaMultiplica(QVMoeda a, QVMoeda b, QVMoeda* pResultado);

#pragma once

/// Sine, cosine and tangent of the set-up and of the laws, by operations of our own in one order and not by the C
/// library, for the reasons of powers.h: every processor, compiler and C library gives the same bits. Less than 0.51
/// ulp from the exact value for angles up to 10^6 [rad]; larger ones are taken modulo the double next to 2 pi. An angle
/// that is infinite or no number gives NaN.
namespace qv {

double sine(double angle);
double cosine(double angle);
double tangent(double angle);

}  // namespace qv

#pragma once

/// Constants of angles.cpp. Made by scripts/angle-tables; the tests hold every number against MPFR.
namespace qv::angle_tables {

constexpr int k_entries = 26;

/// pi / 2 as a sum; whole numbers below 2^20 multiply the first two exactly.
constexpr double k_quarter[3] = {0x1.921fb54400000p+0, 0x1.0b4611a800000p-34, -0x1.d9cceba3f91f2p-66};
constexpr double k_quarters_per_one = 0x1.45f306dc9c883p-1;  ///< 2 / pi

/// sin(j/32).
alignas(64) constexpr double k_sine[k_entries] = {0x0.0p+0,
                                                  0x1.ffeaaaeeee86fp-6,
                                                  0x1.ffaaaeeed4edbp-5,
                                                  0x1.7f701032550e4p-4,
                                                  0x1.feaaeee86ee36p-4,
                                                  0x1.3eb312c5d66cbp-3,
                                                  0x1.7dc102fbaf2b5p-3,
                                                  0x1.bc6f84edc6199p-3,
                                                  0x1.faaeed4f31577p-3,
                                                  0x1.1c37d64c6b876p-2,
                                                  0x1.3ad129769d3d8p-2,
                                                  0x1.591bc9fa2f597p-2,
                                                  0x1.7710255764214p-2,
                                                  0x1.94a6be9f546c5p-2,
                                                  0x1.b1d8305321617p-2,
                                                  0x1.ce9d2e3d4a51fp-2,
                                                  0x1.eaee8744b05f0p-2,
                                                  0x1.0362939c69955p-1,
                                                  0x1.110d0c4b69c3bp-1,
                                                  0x1.1e7343236574cp-1,
                                                  0x1.2b91dea88421ep-1,
                                                  0x1.386597456282bp-1,
                                                  0x1.44eb381cf386bp-1,
                                                  0x1.511f9fd7b351cp-1,
                                                  0x1.5cffc16bf8f0dp-1,
                                                  0x1.6888a4e134b2fp-1};

/// What rounding took from sin(j/32).
alignas(64) constexpr double k_sine_rest[k_entries] = {0x0.0p+0,
                                                       -0x1.cd406fb224ae2p-60,
                                                       -0x1.2d16d32684b69p-59,
                                                       0x1.afc2d1800501ap-60,
                                                       -0x1.afcb2bcc6f03bp-59,
                                                       0x1.47d666b66cb91p-57,
                                                       0x1.5ab50e23c97c3p-59,
                                                       0x1.9c1a56a7b0cabp-57,
                                                       -0x1.15d88508e32b8p-57,
                                                       0x1.46076fe0dcff4p-56,
                                                       0x1.03d550487839ap-63,
                                                       0x1.7c74bac3fe0cbp-57,
                                                       -0x1.6ead7314bb6cep-57,
                                                       -0x1.69ce13e683f58p-56,
                                                       -0x1.ae242cb99f519p-56,
                                                       -0x1.2fc8a12dae298p-57,
                                                       -0x1.789b43c9b027dp-58,
                                                       -0x1.2d8cd78397b01p-55,
                                                       0x1.d918998809981p-55,
                                                       0x1.22a3fa4f41d5ap-56,
                                                       -0x1.fa371db216ab0p-55,
                                                       -0x1.10fada93b07a8p-56,
                                                       -0x1.3ed6c1e6a5505p-55,
                                                       -0x1.5c0e861c48831p-55,
                                                       0x1.96cb370eb578ap-55,
                                                       -0x1.6b7d37644d5e6p-55};

/// cos(j/32).
alignas(64) constexpr double k_cosine[k_entries] = {
    0x1.0000000000000p+0, 0x1.ffc00155527d3p-1, 0x1.ff0015549f4d3p-1, 0x1.fdc06bf7e6b9bp-1, 0x1.fc015527d5bd3p-1,
    0x1.f9c340a7cc428p-1, 0x1.f706bdf9ece1cp-1, 0x1.f3cc7c3b3d16ep-1, 0x1.f01549f7deea1p-1, 0x1.ebe214f76efa8p-1,
    0x1.e733ea0193d40p-1, 0x1.e20bf49acd6c1p-1, 0x1.dc6b7eb995912p-1, 0x1.d653f073e4040p-1, 0x1.cfc6cfa52ad9fp-1,
    0x1.c8c5bf8ce1a84p-1, 0x1.c1528065b7d50p-1, 0x1.b96eeef58840ep-1, 0x1.b11d04162a4c6p-1, 0x1.a85ed4373e02dp-1,
    0x1.9f368ed912f85p-1, 0x1.95a67e00cb1fdp-1, 0x1.8bb105a5dc900p-1, 0x1.8158a31916d5dp-1, 0x1.769fec655211fp-1,
    0x1.6b898fa9efb5dp-1};

/// What rounding took from cos(j/32).
alignas(64) constexpr double k_cosine_rest[k_entries] = {0x0.0p+0,
                                                         -0x1.3b54492d89b5bp-55,
                                                         0x1.328387b99426fp-55,
                                                         0x1.31902b535f8dbp-55,
                                                         0x1.b68f35094efb8p-55,
                                                         0x1.c5b6b063b7462p-55,
                                                         -0x1.698c80c36dcb4p-55,
                                                         -0x1.21a3ad28a3494p-57,
                                                         0x1.d3c1e99e5cafdp-55,
                                                         -0x1.02f9f12ba543ep-55,
                                                         -0x1.6428b3546ce13p-55,
                                                         -0x1.660aec7ef636bp-58,
                                                         0x1.4b364776dcd35p-58,
                                                         -0x1.76236434bec37p-55,
                                                         0x1.8b5b5508f2a0dp-55,
                                                         0x1.ab3d1a1590123p-56,
                                                         -0x1.892111312e828p-55,
                                                         0x1.45a3cc78fade0p-58,
                                                         0x1.1dd561efbc0c2p-56,
                                                         0x1.9be06385ec792p-57,
                                                         -0x1.1d200c5791606p-55,
                                                         -0x1.0befda21f862dp-55,
                                                         0x1.863e03e9474c1p-55,
                                                         -0x1.de8b90b8228dep-57,
                                                         -0x1.827d5cf8c68c5p-57,
                                                         0x1.15ac786ccf4b2p-56};

}  // namespace qv::angle_tables

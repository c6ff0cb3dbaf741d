#include "tests/reference/hydro_reference.h"

#include "qvbrisk/services.h"
#include "tests/reference/functions.h"

namespace qvref {
namespace {

int whole(double value) { return static_cast<int>(value); }
std::size_t at(int i) { return static_cast<std::size_t>(i); }

hull_patch make_patch(const hull_part& part, const double* par) {
  hull_patch patch;
  for (std::size_t n = 0; n < 3; ++n) patch.nodes[n] = whole(par[n]);
  const v3 &p0 = part.nodes[at(patch.nodes[0])], &p1 = part.nodes[at(patch.nodes[1])],
           &p2 = part.nodes[at(patch.nodes[2])];
  const v3 sum = p0 + p1 + p2;
  patch.centroid = {sum[0] / 3.0, sum[1] / 3.0, sum[2] / 3.0};
  patch.edge01 = p1 - p0;
  patch.edge12 = p2 - p1;
  patch.edge20 = p0 - p2;
  patch.edge02 = -1.0 * patch.edge20;
  const double a = dot(patch.edge01, patch.edge01), b = dot(patch.edge02, patch.edge02);
  const double c = dot(patch.edge01, patch.edge02);
  const double d = a * b - c * c;
  patch.area = d >= 0.0 ? 0.5 * std::sqrt(d) : 0.0;
  patch.normal = cross(patch.edge01, patch.edge02);
  normalise(patch.normal);
  return patch;
}

}  // namespace

v3 ask_vector(void* handle, const char* name, const std::vector<int>& ids) {
  v3 values{};
  int count = 3, flag = 0;
  sysary(handle, name, ids.data(), static_cast<int>(ids.size()), values.data(), &count, &flag);
  return values;
}

m33 ask_axes(void* handle, int marker) {
  m33 values{};
  int count = 9, flag = 0;
  sysary(handle, "AM", &marker, 1, values.data(), &count, &flag);
  return values;
}

hull_part set_up_part(const std::vector<double>& par) {
  hull_part part;
  part.set_up = true;
  part.par = par;
  const int n = whole(par[20]);
  part.nodes.resize(at(n) + 1);
  for (int i = 0; i < n; ++i) part.nodes[at(i)] = {par[at(21 + 3 * i)], par[at(22 + 3 * i)], par[at(23 + 3 * i)]};
  const int p = whole(par[at(21 + 3 * n)]);
  for (int i = 0; i < p; ++i) part.patches.push_back(make_patch(part, par.data() + 22 + 3 * n + 3 * i));
  return part;
}

struct hull_element::frames {
  v3 p4, p5, p6, d, v, omega_b;
  m33 A5, A6, R;
  double Kn, Kt, Lr, Mr, Tr, Fr, L2, L3, T2;
};

struct hull_element::loads {
  v3 force{}, torque{}, normal_force{}, normal_torque{}, tangential_force{}, tangential_torque{};
};

void hull_element::patch_drag(const hull_part& part, hull_patch& patch, const frames& f, const time_weights& w,
                              std::array<double, 3>& elevation, loads& sums) {
  const double exponent = part.par[18];
  for (std::size_t n = 0; n < 3; ++n) {
    ++m_census.corners;
    const v3& node = part.nodes[at(patch.nodes[n])];
    const v3 q = f.R * node + f.d;
    if (q[0] < 0.0 || q[0] >= m_wave.x[at(m_wave.cols - 1)]) {
      ++m_census.off_table;
      return;
    }
    double eta = 0.0, wz = 0.0;
    const int j = find_interval(m_wave.x, m_wave.cols, q[0]);
    if (j >= 0) {
      eta = wave_value(m_wave, m_wave.elevation, w, j, q[0]);
      wz = wave_value(m_wave, m_wave.velocity, w, j, q[0]);
      patch.wave_col[n] = j;
    } else {
      ++m_census.between_columns;
    }
    elevation[n] = eta;
    if (eta < q[2]) {
      ++m_census.dry;
      return;
    }
    ++m_census.wet;
    const double cx = current_value(m_currents.first, q[0], q[1], patch.current1_row[n]);
    const double cy = current_value(m_currents.second, q[0], q[1], patch.current2_row[n]);
    const v3 u = f.R * cross(f.omega_b, node) + f.v - v3{cx, cy, wz};
    const v3 g = f.A5 * u;
    const v3 m = f.A6 * patch.normal;
    const double vn = dot(m, g);
    v3 Fn{}, Ft{};
    v3 t = g - vn * m;
    const double s = normalise(t);
    for (std::size_t c = 0; c < 3; ++c) {
      if (vn > 0.0) Fn[c] = (f.L2 / f.T2) * (-(m[c] * patch.area * f.Kn * vn * vn)) * f.L2 * f.Fr;
      Ft[c] = power(f.Lr / f.Tr, exponent) * (-(t[c] * patch.area * f.Kt * power(s, exponent)) * f.L2) * f.Fr;
    }
    if (vn > 0.0) ++m_census.normal_drag;
    const v3 r = f.A6 * node + f.p6 - f.p4;
    const v3 F = Fn + Ft;
    sums.force = sums.force + F;
    sums.torque = sums.torque + cross(r, F);
    sums.normal_force = sums.normal_force + Fn;
    sums.normal_torque = sums.normal_torque + cross(r, Fn);
    sums.tangential_force = sums.tangential_force + Ft;
    sums.tangential_torque = sums.tangential_torque + cross(r, Ft);
  }
}

std::vector<double> hull_element::call(void* handle, double time, const std::vector<double>& par, int iflag) {
  if (m_element_par.empty()) m_element_par = par;
  hull_part& part = m_parts[whole(par[0])];
  if (!part.set_up) part = set_up_part(par);

  const int M4 = whole(part.par[4]), M5 = whole(part.par[5]), M6 = whole(part.par[6]);
  frames f;
  f.p4 = ask_vector(handle, "TDISP", {M4});
  f.p6 = ask_vector(handle, "TDISP", {M6});
  f.p5 = ask_vector(handle, "TDISP", {M5});
  f.A6 = ask_axes(handle, M6);
  f.A5 = ask_axes(handle, M5);
  f.R = transpose(f.A5) * f.A6;
  f.d = ask_vector(handle, "TDISP", {M6, M5, M5});
  f.v = ask_vector(handle, "TVEL", {M6, M5, M5});
  f.omega_b = transpose(f.A6) * ask_vector(handle, "RVEL", {M6});

  const time_weights w = find_row(m_wave, m_time_index, time, iflag);

  f.Mr = 1.0 / m_unit_scale[1], f.Lr = 1.0 / m_unit_scale[0], f.Fr = 1.0 / m_unit_scale[3],
  f.Tr = 1.0 / m_unit_scale[2];
  f.L3 = f.Lr * f.Lr * f.Lr, f.L2 = f.Lr * f.Lr, f.T2 = f.Tr * f.Tr;
  const double scale = part.par[12], density = m_element_par[15], gravity = m_element_par[16];
  const double drag_scale = m_element_par[19];
  const double Kb = (f.Lr / f.T2) * (f.Mr / f.L3) * scale * density * gravity;
  f.Kn = (f.Mr / f.L3) * drag_scale * (density * scale * 0.5 / 3.0);
  f.Kt = (f.Mr / (f.Lr * f.Tr)) * drag_scale * (part.par[17] * scale / 3.0);

  loads drag;
  v3 buoyancy{}, torque{}, centre = f.p4, moment{};
  double volume = 0.0;
  const double t_start = part.par[13], t_end = part.par[14];
  if ((t_end <= t_start || (t_start <= time && time <= t_end)) && scale != 0.0) {
    for (hull_patch& patch : part.patches) {
      std::array<double, 3> e{};
      patch_drag(part, patch, f, w, e, drag);
      const double h = (e[0] + e[1] + e[2]) / 3.0;
      std::array<v3, 3> q;
      int above = 0;
      for (std::size_t n = 0; n < 3; ++n) {
        q[n] = f.R * part.nodes[at(patch.nodes[n])] + f.d;
        above += q[n][2] > h ? 1 : 0;
      }
      if (above == 1 || above == 2) ++m_census.cut_patches;
      const column_result column =
          water_column(m_wave.x[0], m_wave.x[at(m_wave.cols - 1)], q, (f.R * patch.normal)[2], h);
      volume = volume + column.volume;
      moment = moment + column.moment;
      for (std::size_t c = 0; c < 3; ++c) {
        buoyancy[c] = buoyancy[c] + f.A5[6 + c] * column.volume * Kb * f.L3 * f.Fr;
      }
    }
  }
  if (volume != 0.0 && !std::isnan(volume)) {
    const v3 c = {moment[0] / volume, moment[1] / volume, moment[2] / volume};
    centre = f.A5 * c + f.p5;
    torque = cross(centre - f.p4, buoyancy);
  }
  const double magnitude = std::sqrt(dot(buoyancy, buoyancy));

  std::vector<double> result;
  const auto put = [&](const v3& a) { result.insert(result.end(), a.begin(), a.end()); };
  put(drag.force + buoyancy);
  put(drag.torque + torque);
  for (const v3& a : {buoyancy, centre, drag.force, drag.torque, drag.normal_force, drag.normal_torque,
                      drag.tangential_force, drag.tangential_torque, f.p4}) {
    put(a);
  }
  result.push_back(volume);
  if (iflag == 2) {
    m_mass_sum += part.par[9];
    m_buoyancy_sum += magnitude;
    m_mass_moment = m_mass_moment + part.par[9] * f.p4;
    m_buoyancy_moment = m_buoyancy_moment + magnitude * centre;
  }
  return result;
}

std::vector<double> hull_element::report(void* handle, const std::vector<double>& par, int iflag, bool& massless) {
  const int points = whole(par[11]);
  std::vector<double> result(18 + 4 * at(points));
  massless = false;
  if (iflag == 1) return result;
  if (m_mass_sum == 0.0) {
    massless = true;
    return result;
  }
  const auto over = [](const v3& a, double s) { return v3{a[0] / s, a[1] / s, a[2] / s}; };
  const auto put = [&](std::size_t slot, const v3& a) { std::copy(a.begin(), a.end(), result.begin() + long(slot)); };
  const v3 G = over(m_mass_moment, m_mass_sum);
  v3 B = G, D{};
  if (m_buoyancy_sum != 0.0) {
    B = over(m_buoyancy_moment, m_buoyancy_sum);
    D = B - G;
  }
  result[0] = m_buoyancy_sum;
  put(1, B);
  m_mass_moment = m_buoyancy_moment = {};
  m_mass_sum = m_buoyancy_sum = 0.0;

  const m33 Ab = ask_axes(handle, whole(par[2])), Aw = ask_axes(handle, whole(par[3]));
  const v3 z = column(Aw, 2);
  v3 x = cross(column(Ab, 1), z);
  normalise(x);
  v3 y = cross(z, x);
  normalise(y);
  const m33 L = from_columns(x, y, z);
  const m33 M = transpose(L) * Ab;
  const auto degrees = [](double radians) {
    const double angle = radians * 57.29577951308232;
    return angle < 0.0 ? angle + 360.0 : angle;
  };
  result[4] = degrees(std::atan2(M[5], M[8]));
  const v3 l = transpose(L) * D;
  result[5] = std::fabs(l[1]);
  put(6, G + l[1] * y);
  result[9] = degrees(std::atan2(-M[2], std::sqrt(M[1] * M[1] + M[0] * M[0])));
  result[10] = std::fabs(l[0]);
  put(11, G + l[0] * x);
  result[14] = ask_vector(handle, "TFORCE", {whole(par[5]), whole(par[6]), whole(par[6])})[2];
  put(15, G);
  for (int i = 0; i < points; ++i) {
    const int point = whole(par[at(12 + i)]), water = whole(par[3]);
    result[18 + 4 * at(i)] = ask_vector(handle, "TDISP", {point, water, water})[2];
    put(19 + 4 * at(i), ask_vector(handle, "TDISP", {point}));
  }
  return result;
}

}  // namespace qvref

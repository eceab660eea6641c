# The median of figures[key, 1] to figures[key, count[key]].
function median(key,    n, i, j, t, v) {
  n = count[key]
  for (i = 1; i <= n; ++i) v[i] = figures[key, i] + 0
  for (i = 2; i <= n; ++i)
    for (j = i; j > 1 && v[j - 1] > v[j]; --j) { t = v[j]; v[j] = v[j - 1]; v[j - 1] = t }
  return (v[int((n + 1) / 2)] + v[int((n + 2) / 2)]) / 2
}

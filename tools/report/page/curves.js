// The curves, drawn by the chart library where the page has it.
(() => {
  'use strict';

  if (typeof Chart === 'undefined') return;
  const all = JSON.parse(document.getElementById('data').textContent).curves;
  const places = document.querySelectorAll('.curves canvas');
  const dark = window.matchMedia('(prefers-color-scheme: dark)');
  // Told apart by lightness, dashes and points too.
  const COLOURS = {
    light: ['#0b57a4', '#b23a00', '#00735c', '#7b3fa0', '#6b5b00'],
    dark: ['#8ec2ff', '#ffab7a', '#63d8b8', '#d9a5f5', '#e3cf5a'],
  };
  const DASHES = [[], [8, 4], [2, 3], [8, 3, 2, 3], [4, 4]];
  const MANY_POINTS = 30;
  const POINTS = ['circle', 'rect', 'triangle', 'rectRot', 'crossRot'];

  // 1, 2 and 5 in every power of ten.
  function isRound(value) {
    const mantissa = value / 10 ** Math.floor(Math.log10(value) + 1e-9);
    return [1, 2, 5].includes(Math.round(mantissa * 1e6) / 1e6);
  }

  function axis(title, isLogarithmic, ink, line) {
    const ticks = {color: ink, maxRotation: 0};
    if (isLogarithmic) ticks.callback = (value) => String(+value.toPrecision(4));
    return {
      afterBuildTicks: (scale) => {
        if (isLogarithmic) scale.ticks = scale.ticks.filter((tick) => isRound(tick.value));
      },
      type: isLogarithmic ? 'logarithmic' : 'linear',
      title: {display: true, text: title, color: ink},
      ticks,
      grid: {color: line},
    };
  }

  function settings(curves) {
    const style = getComputedStyle(document.documentElement);
    const ink = style.getPropertyValue('--ink').trim();
    const line = style.getPropertyValue('--line').trim();
    const colours = COLOURS[dark.matches ? 'dark' : 'light'];
    const isDense = curves.x.length > MANY_POINTS;  // points would hide the lines
    return {
      type: 'line',
      data: {
        datasets: curves.lines.map((one, index) => ({
          label: one.name,
          data: curves.x.map((x, i) => ({x, y: one.y[i]})),
          borderColor: colours[index % colours.length],
          backgroundColor: colours[index % colours.length],
          borderDash: DASHES[index % DASHES.length],
          pointStyle: isDense ? 'line' : POINTS[index % POINTS.length],
          pointRadius: isDense ? 0 : 3,
          borderWidth: 2,
        })),
      },
      options: {
        animation: false,
        maintainAspectRatio: false,
        interaction: {mode: 'index', intersect: false},
        plugins: {legend: {labels: {color: ink, usePointStyle: true, pointStyleWidth: isDense ? 24 : undefined}}},
        scales: {
          x: {
            ...axis(curves.xTitle, curves.xLogarithmic, ink, line),
            min: Math.min(...curves.x),
            max: Math.max(...curves.x),
          },
          y: axis(curves.yTitle, curves.yLogarithmic, ink, line),
        },
      },
    };
  }

  let charts = [];
  function draw() {
    for (const chart of charts) chart.destroy();
    charts = all.map((curves, index) => new Chart(places[index], settings(curves)));
  }
  draw();
  dark.addEventListener('change', draw);
})();

// The pictures behind a divider. Everything is drawn from `state`; events change it and draw anew.
(() => {
  'use strict';

  const byId = (id) => document.getElementById(id);
  const data = JSON.parse(byId('data').textContent);
  const images = [...document.querySelectorAll('.source img')];
  const names = images.map((image) => image.alt);
  const stage = byId('stage');
  const canvas = byId('pixels');
  const divider = byId('divider');
  const context = canvas.getContext('2d');
  const ZOOMS = [1, 2, 3, 4, 6, 8, 12, 16, 24, 32];

  const state = {
    left: data.left,
    right: data.right,
    reference: data.reference,
    view: 'colour',
    gain: 4,
    zoom: 1,  // device pixels for one of the picture; 'fit' for what shows all of it
    x: 0,     // point of the picture in the middle of the stage
    y: 0,
    divider: 50,  // percent of the stage
  };

  // Samples of pictures as they are, read once.
  const samples = new Map();
  function samplesOf(index) {
    if (!samples.has(index)) {
      const copy = document.createElement('canvas');
      copy.width = images[index].naturalWidth;
      copy.height = images[index].naturalHeight;
      const drawing = copy.getContext('2d', {willReadFrequently: true});
      drawing.drawImage(images[index], 0, 0);
      samples.set(index, drawing.getImageData(0, 0, copy.width, copy.height));
    }
    return samples.get(index);
  }

  // The colours of a picture on mid grey: luma taken out.
  function flattened(source) {
    const result = new ImageData(source.width, source.height);
    const from = source.data;
    const to = result.data;
    for (let i = 0; i < from.length; i += 4) {
      const luma = 0.299 * from[i] + 0.587 * from[i + 1] + 0.114 * from[i + 2];
      for (let k = 0; k < 3; ++k) to[i + k] = 128 + from[i + k] - luma;
      to[i + 3] = 255;
    }
    return result;
  }

  // Mid grey where both agree.
  function difference(source, reference, gain) {
    const result = new ImageData(source.width, source.height);
    for (let i = 0; i < source.data.length; ++i) {
      const isAlpha = i % 4 === 3;
      result.data[i] = isAlpha ? 255 : 128 + gain * (source.data[i] - reference.data[i]);
    }
    return result;
  }

  // What a view shows of a picture, kept while the view stays.
  const layers = new Map();
  function layerOf(index) {
    if (state.view === 'colour') return images[index];
    if (!layers.has(index)) {
      const shown = state.view === 'chroma' ?
          flattened(samplesOf(index)) :
          difference(samplesOf(index), samplesOf(state.reference), state.gain);
      const layer = document.createElement('canvas');
      layer.width = shown.width;
      layer.height = shown.height;
      layer.getContext('2d').putImageData(shown, 0, 0);
      layers.set(index, layer);
    }
    return layers.get(index);
  }

  const size = () => ({width: images[0].naturalWidth, height: images[0].naturalHeight});

  function scale() {
    if (state.zoom !== 'fit') return state.zoom;
    const {width, height} = size();
    const fit = Math.min(canvas.width / width, canvas.height / height);
    return fit >= 1 ? Math.floor(fit) : fit;
  }

  // Where the picture's corner lies on the canvas, in whole pixels so that samples stay squares.
  function corner() {
    const factor = scale();
    return {
      x: Math.round(canvas.width / 2 - state.x * factor),
      y: Math.round(canvas.height / 2 - state.y * factor),
    };
  }

  function drawHalf(index, first, end) {
    const factor = scale();
    const {x, y} = corner();
    const {width, height} = size();
    // Only samples that can be seen.
    const left = Math.max(0, Math.floor((first - x) / factor));
    const right = Math.min(width, Math.ceil((end - x) / factor));
    const top = Math.max(0, Math.floor(-y / factor));
    const bottom = Math.min(height, Math.ceil((canvas.height - y) / factor));
    if (right <= left || bottom <= top) return;
    context.save();
    context.beginPath();
    context.rect(first, 0, end - first, canvas.height);
    context.clip();
    context.imageSmoothingEnabled = factor < 1;
    context.imageSmoothingQuality = 'high';
    context.drawImage(
        layerOf(index), left, top, right - left, bottom - top, x + left * factor, y + top * factor,
        (right - left) * factor, (bottom - top) * factor);
    context.restore();
  }

  // The middle of the stage stays on the picture.
  function keepOnPicture() {
    const {width, height} = size();
    state.x = Math.min(Math.max(state.x, 0), width);
    state.y = Math.min(Math.max(state.y, 0), height);
  }

  function zoomText() {
    const factor = scale();
    return factor >= 1 ? `${factor}:1` : `${Math.round(100 * factor)} %`;
  }

  function draw() {
    const ratio = window.devicePixelRatio || 1;
    canvas.width = Math.round(stage.clientWidth * ratio);
    canvas.height = Math.round(stage.clientHeight * ratio);
    keepOnPicture();
    const split = Math.round(canvas.width * state.divider / 100);
    drawHalf(state.left, 0, split);
    drawHalf(state.right, split, canvas.width);
    divider.style.left = `${state.divider}%`;
    divider.setAttribute('aria-valuenow', String(Math.round(state.divider)));
    divider.setAttribute(
        'aria-valuetext',
        `${Math.round(state.divider)} %: ${names[state.left]} on the left, ` +
            `${names[state.right]} on the right`);
    canvas.setAttribute(
        'aria-label',
        `${names[state.left]} beside ${names[state.right]}, ${byId('view').selectedOptions[0].text}`);
    byId('name-left').textContent = names[state.left];
    byId('name-right').textContent = names[state.right];
    byId('zoom').textContent = zoomText();
  }

  let drawing = false;
  function change(changes) {
    Object.assign(state, changes);
    if (drawing) return;
    drawing = true;
    requestAnimationFrame(() => {
      drawing = false;
      draw();
    });
  }

  function changeView(changes) {
    layers.clear();
    change(changes);
    for (const label of document.querySelectorAll('.for-difference')) {
      label.hidden = state.view !== 'difference';
    }
  }

  // The point of the picture below a place on the screen.
  function pointAt(clientX, clientY) {
    const box = canvas.getBoundingClientRect();
    const ratio = canvas.width / box.width;
    const {x, y} = corner();
    return {
      x: ((clientX - box.left) * ratio - x) / scale(),
      y: ((clientY - box.top) * ratio - y) / scale(),
    };
  }

  // `at` stays where it is on the screen.
  function zoomBy(steps, at = {x: state.x, y: state.y}) {
    const before = scale();
    const wider = ZOOMS.filter((zoom) => zoom < before);
    const nearer = ZOOMS.filter((zoom) => zoom > before);
    const after = steps > 0 ? nearer[0] ?? before : wider[wider.length - 1] ?? 'fit';
    if (after === 'fit') {
      fit();
      return;
    }
    change({
      zoom: after,
      x: at.x + (state.x - at.x) * before / after,
      y: at.y + (state.y - at.y) * before / after,
    });
  }

  function fit() {
    const {width, height} = size();
    change({zoom: 'fit', x: width / 2, y: height / 2});
  }

  function moveDivider(percent) {
    change({divider: Math.min(Math.max(percent, 0), 100)});
  }

  function listenToDivider() {
    const step = {ArrowLeft: -1, ArrowDown: -1, ArrowRight: 1, ArrowUp: 1, PageDown: -10, PageUp: 10};
    divider.addEventListener('keydown', (event) => {
      const far = event.shiftKey ? 10 : 1;
      if (event.key in step) {
        moveDivider(Math.round(state.divider) + far * step[event.key]);
      } else if (event.key === 'Home' || event.key === 'End') {
        moveDivider(event.key === 'Home' ? 0 : 100);
      } else {
        return;
      }
      event.preventDefault();
      event.stopPropagation();
    });
    divider.addEventListener('pointerdown', (event) => {
      divider.setPointerCapture(event.pointerId);
      event.stopPropagation();
    });
    divider.addEventListener('pointermove', (event) => {
      if (!divider.hasPointerCapture(event.pointerId)) return;
      const box = stage.getBoundingClientRect();
      moveDivider(100 * (event.clientX - box.left) / box.width);
    });
  }

  function listenToPointers() {
    const pointers = new Map();
    let spread = 0;  // of two fingers, when the last zoom step was taken
    const distance = () => {
      const [a, b] = [...pointers.values()];
      return Math.hypot(a.x - b.x, a.y - b.y);
    };
    const release = (event) => {
      pointers.delete(event.pointerId);
      stage.classList.toggle('moving', pointers.size > 0);
    };
    stage.addEventListener('pointerdown', (event) => {
      if (event.button !== 0) return;
      stage.setPointerCapture(event.pointerId);
      pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
      if (pointers.size === 2) spread = distance();
      stage.classList.add('moving');
    });
    stage.addEventListener('pointermove', (event) => {
      showPixel(event);
      const last = pointers.get(event.pointerId);
      if (!last) return;
      const factor = scale() * canvas.clientWidth / canvas.width;
      pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
      if (pointers.size === 2) {
        const now = distance();
        if (Math.abs(Math.log(now / spread)) < 0.35) return;
        zoomBy(now > spread ? 1 : -1, pointAt(event.clientX, event.clientY));
        spread = now;
        return;
      }
      change({
        x: state.x - (event.clientX - last.x) / factor,
        y: state.y - (event.clientY - last.y) / factor,
      });
    });
    for (const name of ['pointerup', 'pointercancel']) stage.addEventListener(name, release);
    stage.addEventListener('wheel', (event) => {
      event.preventDefault();
      zoomBy(event.deltaY < 0 ? 1 : -1, pointAt(event.clientX, event.clientY));
    }, {passive: false});
  }

  // The samples of both pictures below the pointer.
  function showPixel(event) {
    const point = pointAt(event.clientX, event.clientY);
    const [x, y] = [Math.floor(point.x), Math.floor(point.y)];
    const {width, height} = size();
    if (x < 0 || y < 0 || x >= width || y >= height) return;
    const at = (index) => samplesOf(index).data.slice(4 * (y * width + x), 4 * (y * width + x) + 3);
    byId('pixel').textContent = `x ${x}, y ${y}: RGB ${at(state.left).join(' ')} left, ` +
        `${at(state.right).join(' ')} right`;
  }

  function listenToKeys() {
    const move = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1]};
    stage.addEventListener('keydown', (event) => {
      if (event.ctrlKey || event.metaKey || event.altKey) return;
      if (event.key in move) {
        const step = 0.1 * Math.min(canvas.width, canvas.height) / scale();
        const [x, y] = move[event.key];
        change({x: state.x + x * step, y: state.y + y * step});
      } else if (event.key === '+' || event.key === '=') {
        zoomBy(1);
      } else if (event.key === '-') {
        zoomBy(-1);
      } else if (event.key === '1') {
        change({zoom: 1});
      } else if (event.key === '0') {
        fit();
      } else {
        return;
      }
      event.preventDefault();
    });
  }

  function listenToTools() {
    for (const id of ['left', 'right', 'reference']) {
      const select = byId(id);
      names.forEach((name, index) => select.add(new Option(name, String(index))));
      select.value = String(state[id]);
      select.addEventListener('change', () => {
        const changes = {[id]: Number(select.value)};
        (id === 'reference' ? changeView : change)(changes);
      });
    }
    byId('view').addEventListener('change', (event) => changeView({view: event.target.value}));
    byId('gain').addEventListener('change', (event) => changeView({gain: Number(event.target.value)}));
    byId('zoom-in').addEventListener('click', () => zoomBy(1));
    byId('zoom-out').addEventListener('click', () => zoomBy(-1));
    byId('zoom-one').addEventListener('click', () => change({zoom: 1}));
    byId('zoom-fit').addEventListener('click', fit);
  }

  async function start() {
    await Promise.all(images.map((image) => image.decode()));
    document.documentElement.classList.add('live');
    for (const element of document.querySelectorAll('.tools, #stage, #pixel')) {
      element.hidden = false;
    }
    const {width, height} = size();
    Object.assign(state, {x: width / 2, y: height / 2});
    listenToTools();
    listenToDivider();
    listenToPointers();
    listenToKeys();
    new ResizeObserver(() => change({})).observe(stage);
    draw();
    // Small pictures as large as they fit, others 1:1.
    if (width < canvas.width && height < canvas.height) fit();
  }

  start();
})();

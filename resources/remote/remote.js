'use strict';
// The guests' page: join with a name and the PIN, search, ask for songs, follow the queue.
// Every text a guest or the server sends is set as text, never as markup.

let texts = {};
let searchTimer = 0;
let searchSerial = 0;
let live = null;

const $ = (id) => document.getElementById(id);

function say(key, value) {
  const text = texts[key] || key;
  return value === undefined ? text : text.replace('%1', value);
}

function show(message) {
  $('message').textContent = message || '';
}

async function call(method, path, body) {
  const options = { method, headers: {}, credentials: 'same-origin' };
  if (body !== undefined) {
    options.headers['Content-Type'] = 'application/json';
    options.body = JSON.stringify(body);
  }
  const response = await fetch(path, options);
  let data = {};
  try { data = await response.json(); } catch (e) { data = {}; }
  return { status: response.status, data };
}

function element(tag, className, text) {
  const node = document.createElement(tag);
  if (className) node.className = className;
  if (text !== undefined) node.textContent = text;
  return node;
}

function songLine(song, who) {
  const what = element('span', 'what', song.artist ? `${song.title} - ${song.artist}` : song.title);
  if (who) what.appendChild(element('span', 'who', who));
  return what;
}

async function loadTexts() {
  const language = (navigator.language || 'en').toLowerCase();
  const { data } = await call('GET', '/texts.json?lang=' + encodeURIComponent(language));
  texts = data.texts || {};
  document.documentElement.lang = data.language || 'en';
  document.title = say('WebTitle');
  for (const node of document.querySelectorAll('[data-text]')) node.textContent = say(node.dataset.text);
  for (const node of document.querySelectorAll('[data-placeholder]')) node.placeholder = say(node.dataset.placeholder);
}

function enter(name) {
  $('join').hidden = true;
  $('guest').hidden = false;
  $('hello').textContent = say('WebHello', name);
  show('');
  search();
  refreshQueue();
  listen();
}

async function join(event) {
  event.preventDefault();
  const button = $('join').querySelector('button');
  button.disabled = true;
  try {
    const { status, data } = await call('POST', '/api/join', { name: $('name').value, pin: $('pin').value });
    if (status === 200) enter(data.name);
    else show(say(data.error || 'WebBadRequest'));
  } finally {
    button.disabled = false;
  }
}

function keyChoice() {
  const select = element('select');
  select.setAttribute('aria-label', say('WebKey'));
  select.appendChild(new Option(say('WebKeyAsBefore'), ''));
  for (let semitones = -6; semitones <= 6; ++semitones) {
    if (semitones === 0) select.appendChild(new Option('0', '0'));
    else select.appendChild(new Option(semitones > 0 ? `+${semitones}` : `${semitones}`, `${semitones}`));
  }
  return select;
}

async function ask(song, key) {
  const body = { song: song.id };
  if (key !== '') body.key = Number(key);
  const { status, data } = await call('POST', '/api/requests', body);
  if (status === 201) show(say('WebAsked', song.title));
  else if (status === 401) return showJoin();
  else show(say(data.error || 'WebBadRequest'));
  refreshQueue();
}

async function search() {
  const serial = ++searchSerial;
  const { status, data } = await call('GET', '/api/search?q=' + encodeURIComponent($('search').value));
  if (serial !== searchSerial) return;
  if (status === 401) return showJoin();
  const hits = $('hits');
  hits.replaceChildren();
  if (status !== 200) return show(say(data.error || 'WebBadRequest'));
  if (!data.songs.length) hits.appendChild(element('li', '', say('WebNoHits')));
  for (const song of data.songs) {
    const line = element('li');
    const key = keyChoice();
    const button = element('button', '', say('WebAsk'));
    button.addEventListener('click', () => ask(song, key.value));
    line.append(songLine(song), key, button);
    hits.appendChild(line);
  }
}

async function withdraw(id) {
  const { status, data } = await call('DELETE', '/api/requests/' + id);
  if (status !== 200) show(say(data.error || 'WebBadRequest'));
  refreshQueue();
}

function withdrawButton(id) {
  const button = element('button', 'quiet', say('WebWithdraw'));
  button.addEventListener('click', () => withdraw(id));
  return button;
}

async function refreshQueue() {
  const { status, data } = await call('GET', '/api/queue');
  if (status === 401 || status === 403) return showJoin(data.error);
  if (status !== 200) return;
  $('now').textContent = data.now
    ? (data.now.singer ? `${data.now.singer}: ` : '') + (data.now.artist ? `${data.now.title} - ${data.now.artist}` : data.now.title)
    : say('WebNothingPlaying');
  const waiting = $('waiting');
  waiting.replaceChildren();
  for (const song of data.waiting) {
    const line = element('li', 'mine');
    line.append(songLine(song, say('WebWaiting')), withdrawButton(song.id));
    waiting.appendChild(line);
  }
  const queue = $('queue');
  queue.replaceChildren();
  let place = 0;
  data.turns.forEach((turn, index) => {
    const mine = turn.id !== undefined;
    const line = element('li', mine ? 'mine' : '');
    line.append(element('span', 'number', `${index + 1}`), songLine(turn, turn.singer));
    if (mine) {
      line.appendChild(withdrawButton(turn.id));
      if (!place) place = index + 1;
    }
    queue.appendChild(line);
  });
  if (!data.turns.length) queue.appendChild(element('li', '', say('WebQueueEmpty')));
  $('place').textContent = place ? say('WebYourPlace', place) : '';
}

function listen() {
  if (live) return;
  live = new WebSocket(`ws://${location.host}/live`);
  live.addEventListener('message', () => refreshQueue());
  live.addEventListener('close', () => {
    live = null;
    if (!$('guest').hidden) {
      show(say('WebOffline'));
      setTimeout(() => { show(''); listen(); refreshQueue(); }, 3000);
    }
  });
}

function showJoin(error) {
  $('guest').hidden = true;
  $('join').hidden = false;
  $('hello').textContent = '';
  if (live) { live.close(); live = null; }
  if (error) show(say(error));
}

async function start() {
  await loadTexts();
  $('join').addEventListener('submit', join);
  $('search').addEventListener('input', () => {
    clearTimeout(searchTimer);
    searchTimer = setTimeout(search, 200);
  });
  const { status, data } = await call('GET', '/api/me');
  if (status === 200) enter(data.name);
  else showJoin();
  // A slow fallback for networks that drop the live channel.
  setInterval(() => { if (!$('guest').hidden) refreshQueue(); }, 15000);
}

start();

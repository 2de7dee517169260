// The account page: sign a browser in (e-mailed link or token), then show the library's
// storage and flight count and the account's API tokens. Everything comes from the API.
'use strict';

const $ = (id) => document.getElementById(id);
const pollEvery = 2000;
const pollFor = 16 * 60 * 1000;

const words = {
  unsupported: 'This server doesn’t support email sign-in — paste an API token instead.',
  expired: 'The sign-in link expired before it was clicked — send a fresh one.',
  unreachable: 'The library can’t be reached — check that its server is running.',
};

/** One call of the library's API: the status and the JSON body (null when there is none). */
async function api(path, method = 'GET', body = undefined) {
  const init = { method, headers: {} };
  if (body !== undefined) {
    init.headers['Content-Type'] = 'application/json';
    init.body = JSON.stringify(body);
  }
  let response;
  try {
    response = await fetch(path, init);
  } catch {
    return { status: 0, json: null };
  }
  let json = null;
  try {
    json = await response.json();
  } catch {
    json = null;
  }
  return { status: response.status, json };
}

function failureText(reply) {
  if (reply.status === 0) return words.unreachable;
  if (reply.json && typeof reply.json.detail === 'string') return reply.json.detail;
  return `Server returned ${reply.status}.`;
}

function show(id, text) {
  const element = $(id);
  element.textContent = text ?? '';
  element.hidden = !text;
}

function flightsText(count) {
  return `${count} flight${count === 1 ? '' : 's'}`;
}

/** Sizes in SI units, as the app writes them. */
function bytesText(bytes) {
  const units = ['bytes', 'KB', 'MB', 'GB', 'TB'];
  let value = bytes;
  let unit = 0;
  while (value >= 1000 && unit < units.length - 1) {
    value /= 1000;
    unit += 1;
  }
  return unit === 0 ? `${value} bytes` : `${value.toFixed(1)} ${units[unit]}`;
}

function dateText(iso) {
  const when = new Date(iso);
  return Number.isNaN(when.getTime())
    ? ''
    : when.toLocaleDateString(undefined, { year: 'numeric', month: 'short', day: 'numeric' });
}

// ---- Signing in ----

let waitingFor = null;  // the e-mail attempt being waited on: { cancelled }

function setMode(mode) {
  $('mode-email').setAttribute('aria-pressed', String(mode === 'email'));
  $('mode-token').setAttribute('aria-pressed', String(mode === 'token'));
  $('email-form').hidden = mode !== 'email';
  $('token-form').hidden = mode !== 'token';
  show('signin-error', '');
}

function showSignIn() {
  $('loading').hidden = true;
  $('account').hidden = true;
  $('signin').hidden = false;
  $('waiting').hidden = true;
  document.body.dataset.ready = 'signin';
}

function stopWaiting() {
  if (waitingFor) waitingFor.cancelled = true;
  waitingFor = null;
  $('waiting').hidden = true;
  $('email-form').hidden = $('mode-email').getAttribute('aria-pressed') !== 'true';
  $('mode-email').disabled = $('mode-token').disabled = false;
}

async function emailSignIn(event) {
  event.preventDefault();
  const email = $('email').value.trim();
  show('signin-error', '');
  $('email-submit').disabled = true;
  const requested = await api('api/auth/device/request', 'POST', { email, name: 'a web browser' });
  $('email-submit').disabled = false;
  if (requested.status === 404 || requested.status === 405) return show('signin-error', words.unsupported);
  if (requested.status !== 200 || !requested.json || typeof requested.json.secret !== 'string')
    return show('signin-error', failureText(requested));

  const attempt = { cancelled: false };
  waitingFor = attempt;
  $('email-form').hidden = true;
  $('mode-email').disabled = $('mode-token').disabled = true;
  $('waiting-line').textContent = `Open the sign-in link we sent to ${email} — this page finishes by itself.`;
  $('waiting').hidden = false;

  const deadline = Date.now() + pollFor;
  while (!attempt.cancelled && Date.now() < deadline) {
    const poll = await api('api/auth/web/poll', 'POST', { secret: requested.json.secret });
    if (attempt.cancelled) return;
    const status = poll.json && poll.json.status;
    if (poll.status === 200 && status === 'ok') {
      stopWaiting();
      return load();
    }
    // A hiccup of the network while waiting counts as no answer yet.
    if (poll.status === 200 && status !== 'pending') break;
    await new Promise((resolve) => setTimeout(resolve, pollEvery));
  }
  if (attempt.cancelled) return;
  stopWaiting();
  show('signin-error', words.expired);
}

async function tokenSignIn(event) {
  event.preventDefault();
  show('signin-error', '');
  $('token-submit').disabled = true;
  const reply = await api('api/auth/web/token', 'POST', { token: $('token').value.trim() });
  $('token-submit').disabled = $('token').value.trim() === '';
  if (reply.status !== 200) return show('signin-error', failureText(reply));
  $('token').value = '';
  load();
}

// ---- The account ----

function tokenRow(token) {
  const row = document.createElement('li');
  row.dataset.id = token.id;
  const name = document.createElement('span');
  name.className = 'name';
  name.textContent = token.name;
  const created = document.createElement('span');
  created.className = 'created';
  created.textContent = dateText(token.created);
  const revoke = document.createElement('button');
  revoke.type = 'button';
  revoke.textContent = 'Revoke';
  // Revoking signs out whatever uses the token, so it asks once more, in the row itself.
  revoke.addEventListener('click', () => {
    const sure = document.createElement('button');
    sure.type = 'button';
    sure.className = 'danger';
    sure.textContent = 'Revoke for Good';
    const keep = document.createElement('button');
    keep.type = 'button';
    keep.textContent = 'Keep';
    keep.addEventListener('click', () => { row.replaceWith(tokenRow(token)); });
    sure.addEventListener('click', async () => {
      sure.disabled = keep.disabled = true;
      const reply = await api(`api/tokens/${token.id}`, 'DELETE');
      if (reply.status !== 200) show('account-error', failureText(reply));
      loadTokens();
    });
    revoke.replaceWith(sure, keep);
  });
  row.append(name, created, revoke);
  return row;
}

async function loadTokens() {
  const reply = await api('api/tokens');
  if (reply.status !== 200 || !reply.json) return show('account-error', failureText(reply));
  const { accepted, tokens } = reply.json;
  $('tokens-note').hidden = accepted;
  $('create-form').hidden = !accepted;
  $('signout').hidden = !accepted;
  $('tokens').replaceChildren(...tokens.map(tokenRow));
  $('no-tokens').hidden = !accepted || tokens.length > 0;
}

async function loadLibrary() {
  const reply = await api('api/flights');
  if (reply.status !== 200 || !reply.json || !Array.isArray(reply.json.ids)) {
    $('library-row').hidden = $('storage-row').hidden = true;
    return;
  }
  const { ids, quota, used } = reply.json;
  $('flights').textContent = flightsText(ids.length);
  $('library-row').hidden = false;
  if (quota >= 1) {
    $('gauge-fill').style.width = `${Math.min(1, used / quota) * 100}%`;
    $('gauge-fill').parentElement.hidden = false;
    $('storage').textContent = `${(used / 1e9).toFixed(1)} of ${(quota / 1e9).toFixed(0)} GB`;
  } else {
    $('gauge-fill').parentElement.hidden = true;
    $('storage').textContent = `${bytesText(used)} used`;
  }
  $('storage-row').hidden = false;
}

async function createToken(event) {
  event.preventDefault();
  show('account-error', '');
  $('create').disabled = true;
  const reply = await api('api/tokens', 'POST', { name: $('token-name').value });
  $('create').disabled = false;
  if (reply.status !== 200 || !reply.json) return show('account-error', failureText(reply));
  $('token-name').value = '';
  $('new-token-text').textContent = reply.json.token;
  $('new-token').hidden = false;
  loadTokens();
}

async function copyToken() {
  const text = $('new-token-text').textContent;
  try {
    await navigator.clipboard.writeText(text);
    $('copy').textContent = 'Copied';
  } catch {
    // Without the clipboard (a plain-http address on the network), select it for a manual copy.
    window.getSelection().selectAllChildren($('new-token-text'));
  }
}

async function signOut() {
  await api('api/auth/web/signout', 'POST');
  $('new-token').hidden = true;
  showSignIn();
}

async function load() {
  const me = await api('api/me');
  if (me.status === 401) return showSignIn();
  $('loading').hidden = true;
  if (me.status !== 200 || !me.json) {
    show('signin-error', failureText(me));
    return showSignIn();
  }
  $('signin').hidden = true;
  $('account').hidden = false;
  $('server').textContent = location.origin;
  $('signed-in-as').textContent = typeof me.json.email === 'string' && me.json.email ? me.json.email : '—';
  await Promise.all([loadLibrary(), loadTokens()]);
  document.body.dataset.ready = 'account';
}

$('mode-email').addEventListener('click', () => setMode('email'));
$('mode-token').addEventListener('click', () => setMode('token'));
$('email').addEventListener('input', () => { $('email-submit').disabled = !$('email').value.includes('@'); });
$('token').addEventListener('input', () => { $('token-submit').disabled = $('token').value.trim() === ''; });
$('email-form').addEventListener('submit', emailSignIn);
$('token-form').addEventListener('submit', tokenSignIn);
$('cancel').addEventListener('click', stopWaiting);
$('create-form').addEventListener('submit', createToken);
$('copy').addEventListener('click', copyToken);
$('signout').addEventListener('click', signOut);
load();

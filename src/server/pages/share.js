// The public page of a shared story video: counts this visit and sends hearts. The page lives
// at /s/<token>; everything it talks to sits under that same path.
(() => {
  const base = location.pathname.replace(/\/+$/, '');
  const views = document.getElementById('views');
  const heart = document.getElementById('heart');
  const hearts = document.getElementById('hearts');
  const sentKey = 'heart:' + base;

  const viewsText = (n) => (n === 1 ? '1 view' : `${n} views`);

  fetch(`${base}/view`, { method: 'POST' })
    .then((r) => (r.ok ? r.json() : null))
    .then((body) => {
      if (body && Number.isInteger(body.views)) views.textContent = viewsText(body.views);
    })
    .catch(() => {});

  // One heart per browser: the button remembers it was pressed.
  const markSent = () => {
    heart.classList.add('sent');
    heart.disabled = true;
  };
  try {
    if (localStorage.getItem(sentKey)) markSent();
  } catch (e) { /* storage may be off; the button then works every time */ }

  heart.addEventListener('click', () => {
    markSent();
    fetch(`${base}/heart`, { method: 'POST' })
      .then((r) => (r.ok ? r.json() : null))
      .then((body) => {
        if (!body || !Number.isInteger(body.hearts)) return;
        hearts.textContent = String(body.hearts);
        try { localStorage.setItem(sentKey, '1'); } catch (e) { /* nothing to remember it in */ }
      })
      .catch(() => {
        heart.classList.remove('sent');
        heart.disabled = false;
      });
  });
})();

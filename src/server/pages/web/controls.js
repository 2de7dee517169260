// What the pilot reads and presses over the scene: title, speed and altitude, play and pause,
// the time slider and the camera buttons. Text is written a few times a second, not every frame.

const units = {
    metric: { speed: 3.6, speedUnit: 'km/h', altitude: 1, altitudeUnit: 'm' },
    imperial: { speed: 2.23694, speedUnit: 'mph', altitude: 3.28084, altitudeUnit: 'ft' },
};

/** "m:ss", a negative time reading as 0. */
export function clockText(seconds) {
    const whole = Math.floor(Math.max(0, seconds));
    return `${Math.floor(whole / 60)}:${String(whole % 60).padStart(2, '0')}`;
}

/** "12 May 2024, 09:30" from an id that starts with the recording's date and time. */
export function dateOfId(id) {
    const m = /^(\d{4})(\d{2})(\d{2})_(\d{2})(\d{2})/.exec(id);
    if (!m)
        return '';
    const date = new Date(Date.UTC(+m[1], +m[2] - 1, +m[3], +m[4], +m[5]));
    if (Number.isNaN(date.getTime()))
        return '';
    const day = date.toLocaleDateString('en-GB', { day: 'numeric', month: 'short', year: 'numeric', timeZone: 'UTC' });
    return `${day}, ${m[4]}:${m[5]}`;
}

export class Controls {
    constructor(metric) {
        const $ = (id) => document.getElementById(id);
        this.el = {
            place: $('place'), when: $('when'), readouts: $('readouts'), bar: $('bar'),
            speed: $('speed'), speedUnit: $('speedUnit'), altitude: $('altitude'), altitudeUnit: $('altitudeUnit'),
            play: $('play'), time: $('time'), clock: $('clock'), attribution: $('attribution'),
            notice: $('notice'), noticeTitle: $('noticeTitle'), noticeText: $('noticeText'),
            cameras: ['follow', 'orbit', 'overview'].map($),
        };
        this.units = metric ? units.metric : units.imperial;
        this.el.speedUnit.textContent = this.units.speedUnit;
        this.el.altitudeUnit.textContent = this.units.altitudeUnit;
        this.scrubbing = false;
        this.lastWrite = -Infinity;
    }

    /** The flight's name and date, and the slider's length. */
    showFlight(meta, id, duration) {
        const place = meta && typeof meta.place === 'string' && meta.place.trim() ? meta.place.trim() : 'Flight';
        this.el.place.textContent = place;
        const model = meta && typeof meta.model === 'string' ? meta.model : '';
        this.el.when.textContent = [dateOfId(id), model].filter(Boolean).join(' · ');
        document.title = `${place} in 3D`;
        this.duration = duration;
        this.el.time.max = String(duration);
        this.el.readouts.hidden = false;
        this.el.bar.hidden = false;
    }

    /** Wires the buttons and the slider to the clock and the camera. */
    bind(playback, rig) {
        this.playback = playback;
        this.el.play.addEventListener('click', () => playback.toggle());
        playback.onChange = () => this.#showPlaying(playback.playing);
        const time = this.el.time;
        time.addEventListener('input', () => {
            this.scrubbing = true;
            playback.seek(Number(time.value));
        });
        time.addEventListener('change', () => { this.scrubbing = false; });
        for (const button of this.el.cameras)
            button.addEventListener('click', () => {
                rig.setMode(button.id);
                for (const other of this.el.cameras)
                    other.setAttribute('aria-pressed', String(other === button));
            });
        document.addEventListener('keydown', (e) => {
            if (e.key === ' ' && e.target === document.body) {
                e.preventDefault();
                playback.toggle();
            }
        });
        this.#showPlaying(playback.playing);
    }

    #showPlaying(playing) {
        this.el.play.textContent = playing ? '❚❚' : '▶';
        this.el.play.setAttribute('aria-label', playing ? 'Pause' : 'Play');
        document.documentElement.dataset.playing = String(playing);
    }

    /** The readouts for `state`, at most ten times a second (`now` in milliseconds). */
    update(state, now) {
        if (now - this.lastWrite < 100)
            return;
        this.lastWrite = now;
        this.el.speed.textContent = String(Math.round(state.speed * this.units.speed));
        this.el.altitude.textContent = Number.isNaN(state.altitude)
            ? '–' : String(Math.round(state.altitude * this.units.altitude));
        this.el.clock.textContent = `${clockText(state.t)} / ${clockText(this.duration)}`;
        if (!this.scrubbing)
            this.el.time.value = String(state.t);
    }

    showAttribution(shown) {
        this.el.attribution.hidden = !shown;
    }

    /** Words instead of the flight: why it can't be shown. */
    notice(title, text) {
        this.el.noticeTitle.textContent = title;
        this.el.noticeText.textContent = text;
        this.el.notice.hidden = false;
        this.el.readouts.hidden = true;
        this.el.bar.hidden = true;
    }
}

// The ground under the flight: a plain grid at take-off height, with the base map's tiles laid
// over it where the tile host answers. Without a tile host, or when it never answers, the grid
// is the ground.
import * as THREE from './three.module.min.js';

const maxTiles = 16;

/** Web Mercator tile numbers of a place at zoom `z`, as fractions. */
function tileOf(lat, lon, z) {
    const n = 2 ** z;
    const x = ((lon + 180) / 360) * n;
    const s = Math.sin((Math.max(-85.05, Math.min(85.05, lat)) * Math.PI) / 180);
    const y = (0.5 - Math.log((1 + s) / (1 - s)) / (4 * Math.PI)) * n;
    return { x, y };
}

/** The latitude and longitude of a tile's top-left corner. */
function cornerOf(x, y, z) {
    const n = 2 ** z;
    const lon = (x / n) * 360 - 180;
    const lat = (Math.atan(Math.sinh(Math.PI * (1 - (2 * y) / n))) * 180) / Math.PI;
    return { lat, lon };
}

/** A tile template the page will use: http(s) with {z}, {x} and {y}, or null. */
export function tileTemplate(text) {
    if (typeof text !== 'string' || !/^https?:\/\/[^\s]+$/.test(text))
        return null;
    return ['{z}', '{x}', '{y}'].every((key) => text.includes(key)) ? text : null;
}

export class Ground {
    /**
     * `track` gives the area and the projection; `height` is the ground's height in the scene;
     * `onChange(state)` hears 'tiles' when the first tile is on the ground and 'grid' once every
     * tile has failed.
     */
    constructor(scene, track, height, template, onChange) {
        this.group = new THREE.Group();
        this.group.position.y = height;
        scene.add(this.group);
        this.onChange = onChange;
        this.loaded = 0;
        this.failed = 0;
        this.wanted = 0;

        const { min, max } = track.bounds();
        const size = Math.max(max[0] - min[0], max[2] - min[2], 1);
        const pad = Math.max(150, size * 0.4);
        this.area = { x0: min[0] - pad, x1: max[0] + pad, z0: min[2] - pad, z1: max[2] + pad };
        this.#grid();
        if (template)
            this.#tiles(track, template);
        else
            onChange('grid');
    }

    /**
     * A square grid over the area, about 30 cells across, in round metres. Lines on the sky's own
     * colour: a filled ground would cost software GL a whole screen of pixels every frame.
     */
    #grid() {
        const a = this.area;
        const size = Math.max(a.x1 - a.x0, a.z1 - a.z0);
        const step = [10, 20, 25, 50, 100, 200, 250, 500, 1000, 2000, 5000].find((s) => size / s <= 30) ?? 10000;
        const cells = Math.ceil(size / step);
        const grid = new THREE.GridHelper(cells * step, cells, 0x52647d, 0x2a3852);
        grid.position.set((a.x0 + a.x1) / 2, 0, (a.z0 + a.z1) / 2);
        this.group.add(grid);
    }

    /** The deepest zoom whose tiles over the area number no more than `maxTiles`. */
    #tiles(track, template) {
        const a = this.area;
        const nw = track.geo(a.x0, a.z0), se = track.geo(a.x1, a.z1);
        let range = null, zoom = 0;
        for (let z = 18; z >= 1 && !range; --z) {
            const p = tileOf(nw.lat, nw.lon, z), q = tileOf(se.lat, se.lon, z);
            const x0 = Math.floor(p.x), x1 = Math.floor(q.x), y0 = Math.floor(p.y), y1 = Math.floor(q.y);
            if ((x1 - x0 + 1) * (y1 - y0 + 1) <= maxTiles) {
                range = { x0, x1, y0, y1 };
                zoom = z;
            }
        }
        const loader = new THREE.TextureLoader();
        loader.setCrossOrigin('anonymous');
        const n = 2 ** zoom;
        for (let y = range.y0; y <= range.y1; ++y)
            for (let x = range.x0; x <= range.x1; ++x) {
                if (y < 0 || y >= n)
                    continue;
                const wrapped = ((x % n) + n) % n;
                const url = template.replace('{z}', zoom).replace('{x}', wrapped).replace('{y}', y);
                ++this.wanted;
                loader.load(url, (texture) => this.#lay(track, texture, x, y, zoom), undefined, () => this.#failed());
            }
        this.zoom = zoom;
    }

    #lay(track, texture, x, y, z) {
        const top = cornerOf(x, y, z), bottom = cornerOf(x + 1, y + 1, z);
        const a = track.local(top.lat, top.lon), b = track.local(bottom.lat, bottom.lon);
        texture.colorSpace = THREE.SRGBColorSpace;
        texture.anisotropy = 4;
        const tile = new THREE.Mesh(new THREE.PlaneGeometry(b.x - a.x, b.z - a.z),
                                    new THREE.MeshBasicMaterial({ map: texture }));
        tile.rotation.x = -Math.PI / 2;
        tile.position.set((a.x + b.x) / 2, 0.05, (a.z + b.z) / 2);
        this.group.add(tile);
        if (++this.loaded === 1)
            this.onChange('tiles');
    }

    #failed() {
        ++this.failed;
        if (this.failed === this.wanted)
            this.onChange('grid');
    }
}

#!/usr/bin/python3
"""Writes the made-up source tree of one generated bench site: posts, notes,
wiki pages or documentation pages, with the layouts and settings of the
generator that builds it. Deterministic: the same kind always gives the same
tree. Run by bench/real-site.sh.

    real-site-content.py KIND DIR [URL]     KIND: hugo-blog hugo-notes jekyll pelican mkdocs dokuwiki

URL is where the site is served, for the generators that write it into
sitemaps and robots.txt.
"""
import datetime
import os
import random
import sys

WORDS = ("lorem ipsum dolor sit amet consectetur adipiscing elit sed do eiusmod tempor "
         "incididunt ut labore et dolore magna aliqua enim ad minim veniam quis nostrud "
         "exercitation ullamco laboris nisi aliquip ex ea commodo consequat").split()


def write(root, path, text):
    full = os.path.join(root, path)
    os.makedirs(os.path.dirname(full), exist_ok=True)
    with open(full, "w", encoding="utf-8") as f:
        f.write(text)


def paragraphs(rng, count=3, words=45):
    out = []
    for _ in range(count):
        text = " ".join(rng.choice(WORDS) for _ in range(words))
        out.append(text[0].upper() + text[1:] + ".")
    return out


def day(n):
    return datetime.date(2023, 1, 1) + datetime.timedelta(days=n)


# --- hugo: a blog with numbered /page/N/ pagers, categories, tags, sitemap ---
HUGO_BLOG_LAYOUTS = {
    "_default/baseof.html": """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>{{ .Title }} | {{ .Site.Title }}</title></head>
<body>
<header><a href="{{ "/" | relURL }}">{{ .Site.Title }}</a>
<nav>{{ range .Site.Taxonomies.categories.Alphabetical }}<a href="{{ .Page.RelPermalink }}">{{ .Page.Title }}</a> {{ end }}
<a href="{{ "/tags/" | relURL }}">Tags</a></nav></header>
<main>{{ block "main" . }}{{ end }}</main>
<footer>Made up for the bench.</footer>
</body></html>
""",
    "partials/pager.html": """{{ $p := .Paginator }}{{ if gt $p.TotalPages 1 }}<nav class="pagination">
{{ if $p.HasPrev }}<a href="{{ $p.Prev.URL }}">&laquo; Newer</a>{{ end }}
{{ range $p.Pagers }}{{ if eq . $p }}<span>{{ .PageNumber }}</span>{{ else if or (le .PageNumber 2) (ge .PageNumber (sub $p.TotalPages 1)) (and (ge .PageNumber (sub $p.PageNumber 2)) (le .PageNumber (add $p.PageNumber 2))) }}<a href="{{ .URL }}">{{ .PageNumber }}</a>{{ end }} {{ end }}
{{ if $p.HasNext }}<a href="{{ $p.Next.URL }}">Older &raquo;</a>{{ end }}
</nav>{{ end }}""",
    "partials/summary.html": """<article><h2><a href="{{ .RelPermalink }}">{{ .Title }}</a></h2>
<p>{{ .Date.Format "2 January 2006" }} in {{ range .Params.categories }}<a href="{{ (print "/categories/" (urlize .) "/") | relURL }}">{{ . }}</a> {{ end }}</p>
<p>{{ .Summary }}</p></article>
""",
    "index.html": """{{ define "main" }}{{ range (.Paginate (where .Site.RegularPages "Section" "posts")).Pages }}{{ partial "summary.html" . }}{{ end }}{{ partial "pager.html" . }}{{ end }}""",
    "_default/list.html": """{{ define "main" }}<h1>{{ .Title }}</h1>{{ range .Paginator.Pages }}{{ partial "summary.html" . }}{{ end }}{{ partial "pager.html" . }}{{ end }}""",
    "_default/terms.html": """{{ define "main" }}<h1>{{ .Title }}</h1><ul>{{ range .Data.Terms.Alphabetical }}<li><a href="{{ .Page.RelPermalink }}">{{ .Page.Title }}</a> ({{ .Count }})</li>{{ end }}</ul>{{ end }}""",
    "_default/single.html": """{{ define "main" }}<article><h1>{{ .Title }}</h1>
<p>{{ .Date.Format "2 January 2006" }}</p>{{ .Content }}
<p>Tags: {{ range .Params.tags }}<a href="{{ (print "/tags/" (urlize .) "/") | relURL }}">{{ . }}</a> {{ end }}</p>
{{ with .PrevInSection }}<a href="{{ .RelPermalink }}">Previous: {{ .Title }}</a>{{ end }}
{{ with .NextInSection }}<a href="{{ .RelPermalink }}">Next: {{ .Title }}</a>{{ end }}</article>{{ end }}""",
}


def hugo_blog(root, rng, url):
    write(root, "config.toml", """baseURL = "%s"
title = "Field notes"
relativeURLs = false
paginate = 10
enableRobotsTXT = true
disableKinds = ["RSS"]
[taxonomies]
category = "categories"
tag = "tags"
""" % url)
    for path, text in HUGO_BLOG_LAYOUTS.items():
        write(root, "layouts/" + path, text)
    write(root, "layouts/robots.txt", "User-agent: *\nDisallow:\nSitemap: {{ \"sitemap.xml\" | absURL }}\n")
    categories = ["Travel", "Cooking", "Gardening", "Music", "Books", "Tools"]
    tags = ["tag-%02d" % i for i in range(1, 19)]
    for n in range(1, 421):
        tagset = sorted(rng.sample(tags, 2))
        body = "\n\n".join(paragraphs(rng, 4))
        write(root, "content/posts/note-%d.md" % n, """---
title: "Note %d"
date: %s
categories: ["%s"]
tags: [%s]
---
%s
""" % (n, day(n).isoformat(), categories[n % len(categories)],
       ", ".join('"%s"' % t for t in tagset), body))


# --- hugo: notes in sections, "Page 3 / 40" with arrows, no sitemap, /p/N/ ---
HUGO_NOTES_LAYOUTS = {
    "_default/baseof.html": """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>{{ .Title }}</title></head>
<body><div id="top"><a href="{{ "/" | relURL }}">Workshop journal</a>
{{ range .Site.Sections }}<a href="{{ .RelPermalink }}">{{ .Title }}</a> {{ end }}</div>
{{ block "main" . }}{{ end }}</body></html>
""",
    "partials/pager.html": """{{ $p := .Paginator }}{{ if gt $p.TotalPages 1 }}<div class="pages">
{{ if $p.HasPrev }}<a href="{{ $p.Prev.URL }}" title="newer">&larr;</a>{{ end }}
Page {{ $p.PageNumber }} / {{ $p.TotalPages }}
{{ if $p.HasNext }}<a href="{{ $p.Next.URL }}" title="older">&rarr;</a>{{ end }}
</div>{{ end }}""",
    "partials/item.html": """<div class="entry"><h3><a href="{{ .RelPermalink }}">{{ .Title }}</a></h3>
{{ .Content }}</div>
""",
    "index.html": """{{ define "main" }}{{ range (.Paginate .Site.RegularPages).Pages }}{{ partial "item.html" . }}{{ end }}{{ partial "pager.html" . }}{{ end }}""",
    "_default/list.html": """{{ define "main" }}<h1>{{ .Title }}</h1>{{ range .Paginator.Pages }}<div class="entry"><a href="{{ .RelPermalink }}">{{ .Title }}</a> {{ .Summary }}</div>{{ end }}{{ partial "pager.html" . }}{{ end }}""",
    "_default/single.html": """{{ define "main" }}<h1>{{ .Title }}</h1>{{ .Content }}
<p><a href="{{ .CurrentSection.RelPermalink }}">Back to {{ .CurrentSection.Title }}</a></p>{{ end }}""",
}


def hugo_notes(root, rng, url):
    write(root, "config.toml", """baseURL = "/"
title = "Workshop journal"
paginate = 8
paginatePath = "p"
disableKinds = ["RSS", "sitemap", "taxonomy", "term"]
""")
    for path, text in HUGO_NOTES_LAYOUTS.items():
        write(root, "layouts/" + path, text)
    sections = ["wood", "metal", "electronics", "textiles", "glass"]
    for s in sections:
        write(root, "content/%s/_index.md" % s, "---\ntitle: \"%s\"\n---\n" % s.capitalize())
    for n in range(1, 541):
        s = sections[rng.randrange(len(sections))]
        body = "\n\n".join(paragraphs(rng, 2, 30))
        write(root, "content/%s/entry-%d.md" % (s, n), "---\ntitle: \"Entry %d\"\ndate: %s\n---\n%s\n"
              % (n, day(n).isoformat(), body))


# --- jekyll: /page2/ pagers that only say older and newer, whole posts -------
def jekyll(root, rng, url):
    write(root, "_config.yml", """title: Kitchen log
paginate: 6
paginate_path: "/page:num/"
permalink: /:year/:month/:day/:title.html
plugins: [jekyll-paginate]
markdown: kramdown
""")
    write(root, "_layouts/default.html", """<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>{{ page.title | default: site.title }}</title></head>
<body><header><a href="{{ "/" | relative_url }}">{{ site.title }}</a> <a href="{{ "/about.html" | relative_url }}">About</a></header>
{{ content }}</body></html>
""")
    write(root, "_layouts/post.html", """---
layout: default
---
<article><h1>{{ page.title }}</h1><p>{{ page.date | date: "%B %-d, %Y" }}</p>{{ content }}</article>
<p>{% if page.previous %}<a href="{{ page.previous.url | relative_url }}">Previous post</a>{% endif %}
{% if page.next %}<a href="{{ page.next.url | relative_url }}">Next post</a>{% endif %}</p>
""")
    write(root, "index.html", """---
layout: default
---
{% for post in paginator.posts %}<article><h2><a href="{{ post.url | relative_url }}">{{ post.title }}</a></h2>
{{ post.content }}</article>
{% endfor %}
<div class="pager">{% if paginator.previous_page %}<a href="{{ paginator.previous_page_path | relative_url }}">Newer posts</a>{% endif %}
{% if paginator.next_page %}<a href="{{ paginator.next_page_path | relative_url }}">Older posts</a>{% endif %}</div>
""")
    write(root, "about.md", "---\nlayout: default\ntitle: About\n---\nA made-up kitchen log.\n")
    for n in range(1, 601):
        d = day(n)
        body = "\n\n".join(paragraphs(rng, 3, 35))
        write(root, "_posts/%s-dish-%d.md" % (d.isoformat(), n),
              "---\nlayout: post\ntitle: \"Dish %d\"\n---\n%s\n" % (n, body))


# --- pelican: index2.html pagers, categories, tags, authors, archives --------
def pelican(root, rng, url):
    write(root, "pelicanconf.py", """AUTHOR = 'Bench'
SITENAME = 'Harbour gazette'
SITEURL = ''
TIMEZONE = 'UTC'
DEFAULT_LANG = 'en'
DEFAULT_PAGINATION = 10
PATH = 'content'
FEED_ALL_ATOM = None
CATEGORY_FEED_ATOM = None
TRANSLATION_FEED_ATOM = None
AUTHOR_FEED_ATOM = None
AUTHOR_FEED_RSS = None
LINKS = ()
SOCIAL = ()
RELATIVE_URLS = False
""")
    categories = ["Harbour", "Weather", "Fishing", "Boats", "People"]
    authors = ["Ann", "Bo", "Cy"]
    tags = ["knots", "tides", "nets", "engines", "sails", "rope", "fog", "ice"]
    for n in range(1, 381):
        body = "\n\n".join(paragraphs(rng, 3, 40))
        title = "Report %d" % n
        write(root, "content/report-%d.rst" % n, """%s
%s

:date: %s 09:00
:category: %s
:tags: %s
:author: %s
:slug: report-%d

%s
""" % (title, "#" * len(title), day(n).isoformat(), categories[n % len(categories)],
       ", ".join(sorted(rng.sample(tags, 2))), authors[n % len(authors)], n, body))


# --- mkdocs: a documentation tree with a sitemap -----------------------------
def mkdocs(root, rng, url):
    write(root, "mkdocs.yml", """site_name: Widget handbook
site_url: %s
theme: readthedocs
use_directory_urls: true
""" % url)
    write(root, "docs/index.md", "# Widget handbook\n\n" + "\n".join(
        "- [Part %d](part-%02d/index.md)" % (p, p) for p in range(1, 13)) + "\n")
    pages = []
    for p in range(1, 13):
        for c in range(1, 46):
            pages.append((p, c))
    for p in range(1, 13):
        write(root, "docs/part-%02d/index.md" % p, "# Part %d\n\n" % p + "\n".join(
            "- [Chapter %d.%d](chapter-%02d.md)" % (p, c, c) for c in range(1, 46)) + "\n")
    for p, c in pages:
        see = rng.sample(pages, 2)
        text = "\n\n".join(paragraphs(rng, 3, 30))
        links = " ".join("[%d.%d](../part-%02d/chapter-%02d.md)" % (q, d, q, d) for q, d in see)
        write(root, "docs/part-%02d/chapter-%02d.md" % (p, c),
              "# Chapter %d.%d\n\n%s\n\nSee also %s.\n" % (p, c, text, links))


# --- dokuwiki: a tree of namespaces, no pagers, links by page id -------------
def dokuwiki(root, rng, url):
    spaces = ["animals", "plants", "rocks", "rivers", "towns", "tools", "songs", "games",
              "foods", "stars", "boats", "birds"]
    pages = [(s, "item%02d" % i) for s in spaces for i in range(1, 51)]
    write(root, "start.txt", "====== Almanac ======\n\n" + "\n".join(
        "  * [[%s:start|%s]]" % (s, s.capitalize()) for s in spaces) + "\n")
    for s in spaces:
        write(root, "%s/start.txt" % s, "====== %s ======\n\n" % s.capitalize() + "\n".join(
            "  * [[%s:%s]]" % p for p in pages if p[0] == s) + "\n\nBack to [[:start]]\n")
    for s, i in pages:
        see = rng.sample(pages, 3)
        text = "\n\n".join(paragraphs(rng, 2, 35))
        write(root, "%s/%s.txt" % (s, i), "====== %s %s ======\n\n%s\n\nSee [[%s:%s]], [[%s:%s]] "
              "and [[%s:%s]]. Up: [[%s:start]]\n" % (s, i, text, *[x for p in see for x in p], s))


KINDS = {"hugo-blog": hugo_blog, "hugo-notes": hugo_notes, "jekyll": jekyll, "pelican": pelican,
         "mkdocs": mkdocs, "dokuwiki": dokuwiki}

if __name__ == "__main__":
    if len(sys.argv) not in (3, 4) or sys.argv[1] not in KINDS:
        sys.exit("usage: real-site-content.py {%s} DIR [URL]" % "|".join(KINDS))
    KINDS[sys.argv[1]](sys.argv[2], random.Random(24), sys.argv[3] if len(sys.argv) == 4 else "/")

#!/usr/bin/env bash
# Real software to size: ten sites of 500 to 1,200 pages built from Debian's
# packages of a blog engine, static-site generators, a wiki and documentation
# sets, each served on a loopback port of its own by one Apache instance that
# listens on 127.0.0.1 only. Content is made up, the same on every machine.
#
#   bench/real-site.sh [start] [SITE...]   makes what is missing, serves all; prints "site URL" lines
#   bench/real-site.sh stop                stops the server (the database stays up)
#   bench/real-site.sh list                prints "site port kind" lines
#   bench/real-site.sh count [SITE...]     full crawl of each started site; writes bench/real-sites.tsv
#
# Idempotent: packages, databases, configuration, content and builds are made
# only when missing or different; a second start only prints the URLs. Needs
# root (packages, the database server, /etc/wordpress). Not part of
# ./scripts/test. bench/REAL-SITES.md lists the sites and their true counts.
set -euo pipefail
cd "$(dirname "$0")/.."
repo=$PWD

# name port kind what-it-shows
sites=(
  "wp-plain 8089 wordpress blog, /?p=N posts, /?paged=N pagers, full posts on the home page, categories, sitemap only at /?sitemap=index, no robots.txt"
  "wp-pretty 8090 wordpress blog, /YYYY/MM/slug/ posts, /page/N/ pagers, summary home page, categories and tags, /wp-sitemap.xml named in robots.txt"
  "hugo-blog 8091 hugo blog, /page/N/ numbered pagers, summaries, categories and tags, sitemap.xml"
  "hugo-notes 8092 hugo notes in sections, /p/N/ pagers with arrows and 'Page 3 / 68', whole notes on the home page, no sitemap"
  "jekyll 8093 jekyll blog, /pageN/ pagers that only say older and newer, whole posts, no sitemap"
  "pelican 8094 pelican blog, index2.html pagers with arrows and 'Page 1 / 38', categories, tags, authors, no sitemap"
  "mkdocs 8095 mkdocs documentation tree, directory URLs, full navigation on every page, sitemap.xml"
  "dokuwiki 8096 dokuwiki wiki tree of namespaces, doku.php?id= links, no pagers, no sitemap"
  "python-doc 8097 static python3.11-doc, Sphinx documentation, relative links, no sitemap"
  "postgresql-doc 8098 static postgresql-doc-15, DocBook documentation, flat relative links, no sitemap"
)

state=/var/tmp/orvwebpage-real-site
pidfile=$state/apache.pid
conf=$state/apache.conf
tsv=bench/real-sites.tsv

site_line() {
  local s
  for s in "${sites[@]}"; do
    [ "${s%% *}" = "$1" ] && { echo "$s"; return 0; }
  done
  echo "bench/real-site.sh: no site named $1 (bench/real-site.sh list)" >&2
  return 1
}
port_of() { site_line "$1" | awk '{ print $2 }'; }
kind_of() { site_line "$1" | awk '{ print $3 }'; }
notes_of() { site_line "$1" | cut -d' ' -f4-; }

stop_apache() {
  if [ -s "$pidfile" ] && kill -0 "$(cat "$pidfile")" 2>/dev/null; then
    /usr/sbin/apache2 -f "$conf" -k stop
    for _ in $(seq 50); do [ -e "$pidfile" ] || break; sleep 0.1; done
  fi
}

action=start
case ${1:-} in
  start | stop | list | count) action=$1; shift ;;
  -*) echo "usage: bench/real-site.sh [start|stop|list|count] [SITE...]" >&2; exit 2 ;;
esac
chosen=("$@")
if [ ${#chosen[@]} -eq 0 ]; then
  for s in "${sites[@]}"; do chosen+=("${s%% *}"); done
fi
for name in "${chosen[@]}"; do site_line "$name" >/dev/null || exit 2; done

if [ "$action" = list ]; then
  for s in "${sites[@]}"; do echo "$s" | awk '{ print $1, $2, $3 }'; done
  exit 0
fi
[ "$(id -u)" -eq 0 ] || { echo "bench/real-site.sh: run as root" >&2; exit 1; }
if [ "$action" = stop ]; then
  stop_apache
  exit 0
fi

if [ "$action" = count ]; then
  tmp=$(mktemp)
  trap 'rm -f "$tmp"' EXIT
  [ -s "$tsv" ] && grep -v '^#' "$tsv" >"$tmp" || true
  for name in "${chosen[@]}"; do
    url="http://127.0.0.1:$(port_of "$name")/"
    echo "bench/real-site.sh: crawling $name ($url)" >&2
    n=$(/usr/bin/python3 bench/real-site-crawl.py --list "$state/$name.pages" "$url")
    awk -F'\t' -v n="$name" '$1 != n' "$tmp" >"$tmp.new" && mv "$tmp.new" "$tmp"
    printf '%s\t%s\t%s\t%s\n' "$name" "$url" "$n" "$(notes_of "$name")" >>"$tmp"
  done
  {
    printf '# site\tURL\ttrue pages\tnotes   (bench/real-site.sh count: a full crawl)\n'
    for s in "${sites[@]}"; do awk -F'\t' -v n="${s%% *}" '$1 == n' "$tmp"; done
  } >"$tsv"
  cat "$tsv"
  exit 0
fi

./scripts/setup --real-site
mkdir -p "$state/logs" "$state/www"

# A stamp per site: what made its content. A different stamp remakes it.
stamp_ok() { [ -s "$state/$1.stamp" ] && [ "$(cat "$state/$1.stamp")" = "$2" ]; }

# --- WordPress: one database and configuration per site -----------------------
wordpress_site() { # name port posts categories tags permalink home
  local name=$1 port=$2 db=orvbench cfg=orvbench
  [ "$name" = wp-plain ] || { db="orvbench_${name//-/_}"; cfg="orvbench-$name"; }
  if ! mysqladmin ping >/dev/null 2>&1; then
    service mariadb start >/dev/null
  fi
  mysql <<SQL
CREATE DATABASE IF NOT EXISTS $db;
CREATE USER IF NOT EXISTS 'orvbench'@'localhost' IDENTIFIED BY 'orvbench';
GRANT ALL ON $db.* TO 'orvbench'@'localhost';
SQL
  cat >"$state/config-$cfg.php.new" <<PHP
<?php
define('DB_NAME', '$db');
define('DB_USER', 'orvbench');
define('DB_PASSWORD', 'orvbench');
define('DB_HOST', 'localhost');
define('WP_HOME', 'http://127.0.0.1:$port');
define('WP_SITEURL', 'http://127.0.0.1:$port');
define('WP_HTTP_BLOCK_EXTERNAL', true);
define('DISABLE_WP_CRON', true);
PHP
  if ! cmp -s "$state/config-$cfg.php.new" "/etc/wordpress/config-$cfg.php"; then
    mv "$state/config-$cfg.php.new" "/etc/wordpress/config-$cfg.php"
    chmod 644 "/etc/wordpress/config-$cfg.php"
  else
    rm "$state/config-$cfg.php.new"
  fi
  WORDPRESS_CONFIG=$cfg HTTP_HOST="127.0.0.1:$port" php bench/real-site-fill.php "${@:3}"
  # Pretty permalinks need every path sent to WordPress, as its .htaccess would;
  # plain ones have no such rule, so /robots.txt and /wp-sitemap.xml are 404 there.
  local fallback=""
  [ -n "$6" ] && fallback="FallbackResource /index.php"
  vhosts+="<VirtualHost 127.0.0.1:$port>
  DocumentRoot /usr/share/wordpress
  DirectoryIndex index.php
  SetEnv WORDPRESS_CONFIG $cfg
  Alias /wp-content /var/lib/wordpress/wp-content
  $fallback
  CustomLog $state/logs/$name.log plain
</VirtualHost>
"
}

# --- generated sites: made-up sources, built by their generator ----------------
generated_site() { # name kind
  local name=$1 kind=$2 src=$state/src/$1 www=$state/www/$1 stamp
  stamp="$kind $(md5sum <bench/real-site-content.py | cut -c1-32) $(dpkg-query -W -f='${Version}' "$kind")"
  if ! stamp_ok "$name" "$stamp"; then
    echo "bench/real-site.sh: building $name" >&2
    rm -rf "$src" "$www" "$state/$name.stamp"
    mkdir -p "$src"
    /usr/bin/python3 bench/real-site-content.py "$name" "$src" "http://127.0.0.1:$(port_of "$name")/"
    case $kind in
      hugo) hugo --quiet -s "$src" -d "$www" >/dev/null ;;
      jekyll) jekyll build --quiet -s "$src" -d "$www" >/dev/null ;;
      pelican) (cd "$src" && pelican --quiet content -s pelicanconf.py -o "$www" >/dev/null) ;;
      mkdocs) mkdocs build --quiet -f "$src/mkdocs.yml" -d "$www" ;;
    esac
    echo "$stamp" >"$state/$name.stamp"
  fi
  static_vhost "$name" "$www"
}

static_vhost() { # name root
  vhosts+="<VirtualHost 127.0.0.1:$(port_of "$1")>
  DocumentRoot $2
  DirectoryIndex index.html
  CustomLog $state/logs/$1.log plain
  <Directory $2>
    Options FollowSymLinks
    Require all granted
  </Directory>
</VirtualHost>
"
}

# --- DokuWiki: a copy of Debian's of its own, with its own pages and settings --
dokuwiki_site() { # name
  local name=$1 dir=$state/dokuwiki stamp settings
  # A wiki to read: no editing, no login, no tool pages, only the pages themselves.
  settings="<?php
\$conf['title'] = 'Almanac';
\$conf['savedir'] = '$dir/data';
\$conf['useacl'] = 0;
\$conf['userewrite'] = 0;
\$conf['breadcrumbs'] = 0;
\$conf['youarehere'] = 1;
\$conf['sitemap'] = 0;
\$conf['send404'] = 1;
\$conf['updatecheck'] = 0;
\$conf['disableactions'] = 'backlink,index,recent,revisions,edit,source,media,diff,export_raw,export_xhtml,export_xhtmlbody,login,register,resendpwd,profile,subscribe,admin,check,preview,save,draft,draftdel,conflict,search,sitemap,rss';
"
  stamp="dokuwiki $(cat bench/real-site-content.py - <<<"$settings" | md5sum | cut -c1-32) $(dpkg-query -W -f='${Version}' dokuwiki)"
  if ! stamp_ok "$name" "$stamp"; then
    echo "bench/real-site.sh: building $name" >&2
    rm -rf "$dir" "$state/$name.stamp"
    mkdir -p "$dir"
    cp -rL /usr/share/dokuwiki "$dir/app"
    cp -rL /etc/dokuwiki "$dir/conf"
    mkdir -p "$dir/data"
    cp -rL /var/lib/dokuwiki/data/. "$dir/data/"
    rm -rf "$dir/data/pages" "$dir/data/attic" "$dir/data/meta" "$dir/data/index" "$dir/data/cache"
    mkdir -p "$dir/data/attic" "$dir/data/meta" "$dir/data/index" "$dir/data/cache" "$dir/data/tmp" "$dir/data/locks"
    /usr/bin/python3 bench/real-site-content.py dokuwiki "$dir/data/pages"
    rm -f "$dir/app/.htaccess" "$dir/app/install.php"
    cat >"$dir/app/inc/preload.php" <<PHP
<?php
if (!defined('DOKU_CONF')) define('DOKU_CONF', '$dir/conf/');
PHP
    rm -f "$dir/conf/local.php" "$dir/conf/users.auth.php" "$dir/conf/acl.auth.php"
    echo "$settings" >"$dir/conf/local.php"
    chown -R www-data:www-data "$dir/data" "$dir/conf"
    echo "$stamp" >"$state/$name.stamp"
  fi
  vhosts+="<VirtualHost 127.0.0.1:$(port_of "$name")>
  DocumentRoot $dir/app
  DirectoryIndex doku.php
  CustomLog $state/logs/$name.log plain
  <Directory $dir/app>
    Require all granted
  </Directory>
</VirtualHost>
"
}

# Every site is made and served, so that starting one never stops another.
vhosts=""
listens=""
for s in "${sites[@]}"; do
  name=${s%% *}
  listens+="Listen 127.0.0.1:$(port_of "$name")"$'\n'
  case $name in
    wp-plain) wordpress_site "$name" 8089 420 6 0 "" full ;;
    wp-pretty) wordpress_site "$name" 8090 360 8 16 "/%year%/%monthnum%/%postname%/" excerpt ;;
    dokuwiki) dokuwiki_site "$name" ;;
    python-doc) static_vhost "$name" /usr/share/doc/python3.11/html ;;
    postgresql-doc) static_vhost "$name" /usr/share/doc/postgresql-doc-15/html ;;
    *) generated_site "$name" "$(kind_of "$name")" ;;
  esac
done

# --- Apache, an instance of its own ------------------------------------------
cat >"$conf.new" <<CONF
ServerRoot /etc/apache2
ServerName 127.0.0.1
$listens
PidFile $pidfile
User www-data
Group www-data
ErrorLog $state/error.log
LogFormat "%>s %r" plain
MaxRequestWorkers 8
LoadModule mpm_prefork_module /usr/lib/apache2/modules/mod_mpm_prefork.so
LoadModule authz_core_module /usr/lib/apache2/modules/mod_authz_core.so
LoadModule dir_module /usr/lib/apache2/modules/mod_dir.so
LoadModule mime_module /usr/lib/apache2/modules/mod_mime.so
LoadModule env_module /usr/lib/apache2/modules/mod_env.so
LoadModule alias_module /usr/lib/apache2/modules/mod_alias.so
LoadModule php_module /usr/lib/apache2/modules/libphp8.2.so
TypesConfig /etc/mime.types
<FilesMatch "\.php$">
  SetHandler application/x-httpd-php
</FilesMatch>
<Directory />
  Require all denied
</Directory>
<Directory /usr/share/wordpress>
  Require all granted
</Directory>
<Directory /var/lib/wordpress/wp-content>
  Require all granted
</Directory>
$vhosts
CONF
if ! cmp -s "$conf.new" "$conf"; then
  mv "$conf.new" "$conf"
  stop_apache
else
  rm "$conf.new"
fi
if ! [ -s "$pidfile" ] || ! kill -0 "$(cat "$pidfile")" 2>/dev/null; then
  /usr/sbin/apache2 -f "$conf" -k start
fi
for name in "${chosen[@]}"; do
  url="http://127.0.0.1:$(port_of "$name")/"
  for _ in $(seq 100); do
    wget -q -O /dev/null "$url" 2>/dev/null && break
    sleep 0.1
  done
  wget -q -O /dev/null "$url" || { echo "bench/real-site.sh: $url does not answer; see $state/error.log" >&2; exit 1; }
  echo "$name $url"
done

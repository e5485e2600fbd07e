#!/usr/bin/env bash
# A real web application to estimate: WordPress from Debian's packages, with
# its MariaDB database, served by an Apache instance of its own on 127.0.0.1
# only, filled with a known number of posts spread over categories.
#
#   bench/real-site.sh [--port P] [--posts N] [--categories N] [start]   prints the site's URL
#   bench/real-site.sh [--port P] stop
#
# Idempotent: packages, database, configuration and content are made only when
# missing or different; a second start of a running site only prints its URL.
# Needs root (packages, the database server, /etc/wordpress). Not part of
# ./scripts/test.
set -euo pipefail
cd "$(dirname "$0")/.."

port=8089
posts=200
categories=5
action=start
while [ $# -gt 0 ]; do
  case $1 in
    --port | --posts | --categories)
      [ $# -ge 2 ] || { echo "bench/real-site.sh: $1 needs a value" >&2; exit 2; }
      declare "${1#--}=$2"
      shift 2
      ;;
    start | stop) action=$1; shift ;;
    *) echo "usage: bench/real-site.sh [--port P] [--posts N] [--categories N] [start|stop]" >&2; exit 2 ;;
  esac
done
for n in "$port" "$posts" "$categories"; do
  [[ $n =~ ^[0-9]+$ ]] || { echo "bench/real-site.sh: not a number: $n" >&2; exit 2; }
done
[ "$(id -u)" -eq 0 ] || { echo "bench/real-site.sh: run as root" >&2; exit 1; }

state=/var/tmp/orvwebpage-real-site
url="http://127.0.0.1:$port/"
pidfile=$state/apache.pid

stop_apache() {
  if [ -s "$pidfile" ] && kill -0 "$(cat "$pidfile")" 2>/dev/null; then
    /usr/sbin/apache2 -f "$state/apache.conf" -k stop
    for _ in $(seq 50); do [ -e "$pidfile" ] || break; sleep 0.1; done
  fi
}

if [ "$action" = stop ]; then
  stop_apache
  exit 0
fi

./scripts/setup --real-site
mkdir -p "$state"

# --- the database ------------------------------------------------------------
if ! mysqladmin ping >/dev/null 2>&1; then
  service mariadb start >/dev/null
fi
mysql <<SQL
CREATE DATABASE IF NOT EXISTS orvbench;
CREATE USER IF NOT EXISTS 'orvbench'@'localhost' IDENTIFIED BY 'orvbench';
GRANT ALL ON orvbench.* TO 'orvbench'@'localhost';
SQL

# --- WordPress's configuration, chosen by the server's WORDPRESS_CONFIG --------
cat >"$state/config.php.new" <<PHP
<?php
define('DB_NAME', 'orvbench');
define('DB_USER', 'orvbench');
define('DB_PASSWORD', 'orvbench');
define('DB_HOST', 'localhost');
define('WP_HOME', 'http://127.0.0.1:$port');
define('WP_SITEURL', 'http://127.0.0.1:$port');
define('WP_HTTP_BLOCK_EXTERNAL', true);
define('DISABLE_WP_CRON', true);
PHP
if ! cmp -s "$state/config.php.new" /etc/wordpress/config-orvbench.php; then
  mv "$state/config.php.new" /etc/wordpress/config-orvbench.php
  chmod 644 /etc/wordpress/config-orvbench.php
else
  rm "$state/config.php.new"
fi

# --- the content: refilled only when the wanted counts differ -----------------
WORDPRESS_CONFIG=orvbench HTTP_HOST="127.0.0.1:$port" \
  php bench/real-site-fill.php "$posts" "$categories"

# --- Apache, an instance of its own ------------------------------------------
cat >"$state/apache.conf.new" <<CONF
ServerRoot /etc/apache2
ServerName 127.0.0.1
Listen 127.0.0.1:$port
PidFile $pidfile
User www-data
Group www-data
ErrorLog $state/error.log
LogFormat "%>s %r" plain
CustomLog $state/access.log plain
LoadModule mpm_prefork_module /usr/lib/apache2/modules/mod_mpm_prefork.so
LoadModule authz_core_module /usr/lib/apache2/modules/mod_authz_core.so
LoadModule dir_module /usr/lib/apache2/modules/mod_dir.so
LoadModule mime_module /usr/lib/apache2/modules/mod_mime.so
LoadModule env_module /usr/lib/apache2/modules/mod_env.so
LoadModule alias_module /usr/lib/apache2/modules/mod_alias.so
LoadModule php_module /usr/lib/apache2/modules/libphp8.2.so
TypesConfig /etc/mime.types
DocumentRoot /usr/share/wordpress
DirectoryIndex index.php
SetEnv WORDPRESS_CONFIG orvbench
Alias /wp-content /var/lib/wordpress/wp-content
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
CONF
if ! cmp -s "$state/apache.conf.new" "$state/apache.conf"; then
  mv "$state/apache.conf.new" "$state/apache.conf"
  stop_apache
else
  rm "$state/apache.conf.new"
fi
if ! [ -s "$pidfile" ] || ! kill -0 "$(cat "$pidfile")" 2>/dev/null; then
  /usr/sbin/apache2 -f "$state/apache.conf" -k start
fi
for _ in $(seq 100); do
  wget -q -O /dev/null "$url" 2>/dev/null && break
  sleep 0.1
done
wget -q -O /dev/null "$url" || { echo "bench/real-site.sh: $url does not answer; see $state/error.log" >&2; exit 1; }
echo "$url"

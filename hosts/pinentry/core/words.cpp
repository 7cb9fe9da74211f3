#include "pinentry/core/words.h"

#include <algorithm>
#include <array>

namespace pinentry {

const Words& WordsOf(std::string_view language) {
    static constexpr std::array kWords{
        Words{"en", "Confirmation", "OK", "Cancel", "_Yes", "_No",
              "_Answer:", "This is too easily guessed."},
        Words{"de", "Bestätigung", "OK", "Abbrechen", "_Ja", "_Nein",
              "_Antwort:", "Das ist zu leicht zu erraten."},
        Words{"es", "Confirmación", "Aceptar", "Cancelar", "_Sí", "_No",
              "_Respuesta:", "Esto se adivina con demasiada facilidad."},
        Words{"fr", "Confirmation", "OK", "Annuler", "_Oui", "_Non",
              "_Réponse :", "C’est trop facile à deviner."},
        Words{"it", "Conferma", "OK", "Annulla", "_Sì", "_No",
              "_Risposta:", "È troppo facile da indovinare."},
    };
    const auto* it = std::find_if(kWords.begin(), kWords.end(), [=](const Words& words) {
        return language == words.pszLanguage;
    });
    return it != kWords.end() ? *it : kWords.front();
}

}  // namespace pinentry
